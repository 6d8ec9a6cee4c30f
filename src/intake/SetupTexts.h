#pragma once

#include <QString>
#include <QStringList>

namespace tuppi {

/// Everything that the New Transcription panel says about its files.
struct SetupTexts
{
    QStringList files;  ///< one line a name; the first five and the number of the rest when there are seven or more
    QString length;     ///< total length, empty while none is known
    QString start;      ///< title of the Start button

    bool operator==(const SetupTexts &) const = default;
};

/// `paths` in the panel's order; `seconds` is the length of those files whose length is known, together.
SetupTexts TextsOfBatch(const QStringList &paths, double seconds);

/// The names of the files, as the panel lists them. Looks at no more names than it lists.
QStringList FileListLines(const QStringList &paths);

/// A length in hours and minutes, in whole minutes below an hour, never below one minute; empty for none.
QString LengthText(double seconds);

QString StartTitle(qsizetype fileCount);

} // namespace tuppi

#pragma once

#include "core/FileDescriptor.h"
#include "intake/Recording.h"

#include <QString>

#include <functional>

namespace engine {

// Names inside a call dir.
namespace CallDirNames {
inline const QString technical = QStringLiteral("Technical files");
inline const QString summary = QStringLiteral("Summary.md");
inline const QString transcript = QStringLiteral("Transcript.txt");
} // namespace CallDirNames

// A call dir in the making: in a hidden folder of the library until it is complete, removed again unless it was
// kept. One that a killed program left behind is removed by the next one.
class NewCallDir
{
public:
    // Whether a job has this call dir: then it stays, also where its maker was killed before it could keep it.
    using IsRecorded = std::function<bool(const QString &name)>;

    // Makes the library where it is missing. Throws Failure.
    NewCallDir(const QString &library, const IsRecorded &isRecorded);
    ~NewCallDir();
    NewCallDir(const NewCallDir &) = delete;
    NewCallDir &operator=(const NewCallDir &) = delete;

    // Copies the recording in; the path of the copy relative to the call dir. Throws Failure.
    QString take(const Recording &recording);

    // Gives it its name, unique in the library, and returns the full path. It is still removed unless kept.
    // Throws Failure.
    QString place(const QString &name);

    void keep() { m_folder.clear(); }

private:
    void announce(const QString &name);

    QString m_library;
    QString m_workshop;
    QString m_folder; // in the workshop, later in the library
    FileDescriptor m_lock;
};

// The name for a call dir, without anything that a file system or a person stumbles over:
// "2025-03-14 10.22 Interview".
QString callDirName(const QDateTime &recordedAt, const QString &title);

// Whether the title is still the one that the call dir was named after: a rename leaves the folder alone.
bool hasFirstTitle(const QString &callDir, const QString &title);

} // namespace engine

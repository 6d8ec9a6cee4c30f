#pragma once

#include <QByteArray>
#include <QLocale>
#include <QString>

namespace tuppi {

/// A path with the home folder as "~".
QString AbbreviatedPath(const QString &path, const QString &home);

/// What became of a settings file that could not be read and was set aside under that path.
QString SettingsSetAsideDetail(const QString &path, const QString &home);

/// The kilobytes (of 1,024) that a report of `du -sk` begins with; 0 when it begins with no number.
qint64 KilobytesInReport(const QByteArray &report);

/// A size as file managers write it: units of 1,000, no decimals up to kilobytes, one for megabytes, two above,
/// none of them a trailing zero. "Empty" for nothing.
QString SizeOnDisk(qint64 kilobytes, const QLocale &locale);

} // namespace tuppi

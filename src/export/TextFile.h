#pragma once

#include <QString>

#include <optional>

namespace tuppi {

/// The path with the extension "txt", whatever else the name ends in.
QString WithTextSuffix(const QString &path);

/// The file name, its end before ".txt" cut off where it is longer than a file system takes.
QString FileNameThatFits(const QString &name);

/// Replaces the file by one with this text in UTF-8, wholly or not at all. Nothing when that went well, else
/// the system's words for what went wrong.
std::optional<QString> WriteTextFile(const QString &path, const QString &text);

/// The folder `name` in `parent`, which only the current user can look into; made where it is missing. A folder
/// of somebody else's under that name, or a link, is passed over for the next free name. Empty when there is
/// none to be had.
QString PrivateFolder(const QString &parent, const QString &name);

} // namespace tuppi

#pragma once

#include "core/FileDescriptor.h"

#include <QDateTime>
#include <QString>

namespace engine {

// A file that was handed over, open for reading.
struct Recording
{
    FileDescriptor file;
    QString path;
    QString title;     // the file's name without its last extension
    QString extension; // lower case, without the dot, safe as part of a name; may be empty
    QDateTime modified;
    qint64 size = 0;
};

// Opens the file. Throws Failure with a sentence for a folder, a missing, empty or unreadable file.
// What is inside is not looked at.
Recording openRecording(const QString &path);

// Copies all of it to a new file at `target`, sharing blocks where the file system can, and makes it last.
// Throws Failure; what was written stays for the caller to remove.
void copyRecording(const Recording &recording, const QString &target);

} // namespace engine

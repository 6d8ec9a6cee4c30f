#pragma once

#include "core/FileDescriptor.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <functional>
#include <optional>

namespace engine {

// Makes the folder and what leads to it. Throws Failure with a sentence that starts with `doing`.
void makeFolder(const QString &path, const QString &doing);

// A file of the folder for reading and writing, whose name is gone at once: it goes with the last who holds it. Those
// who look at what a process has open find the name still. Not valid, with errno, when it cannot be made.
FileDescriptor namelessFile(const QString &folder, QLatin1StringView name);

// Writes all of it into the open file, in as many steps as that takes. Throws Failure with a sentence that starts with
// `doing`.
void writeAll(int fd, const QByteArray &bytes, const QString &doing);

// Likewise. False, with errno, when it cannot.
bool tryWriteAll(int fd, QByteArrayView bytes);

// Writes beside and renames: a reader sees the old text or the new one, also after a power cut.
// Throws Failure.
void writeFile(const QString &path, const QByteArray &bytes);

// Takes a text piece by piece.
using TakePiece = std::function<void(QByteArrayView piece)>;

// Gives a text, in pieces to be taken at once: a long one is nowhere whole.
using GivePieces = std::function<void(const TakePiece &take)>;

// Likewise, of pieces.
void writeFile(const QString &path, const GivePieces &give);

QByteArray wholeOf(const GivePieces &give);

// All that the file holds; nothing where there is no such file. Throws Failure, with a sentence that starts with
// `doing`, for one that cannot be read to its end.
std::optional<QByteArray> readFile(const QString &path, const QString &doing);

// Makes entries of a folder (a new file, a rename) last over a power cut. Best effort.
void syncFolder(const QString &path);

// Bytes that this user may still write on the disk that holds path; -1 when unknown.
qint64 roomAt(const QString &path);

// For sentences: 1.2 GB, 340 MB, 12 KB.
QString sizeText(qint64 bytes);

} // namespace engine

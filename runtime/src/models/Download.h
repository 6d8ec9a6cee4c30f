#pragma once

#include "core/Failure.h"
#include "core/FileDescriptor.h"
#include "models/Http.h"

#include <QCryptographicHash>
#include <QList>
#include <QString>

#include <functional>

namespace engine {

struct WantedFile
{
    QByteArray url;
    qint64 size = 0; // bytes
    QString sha256;
    QString repo; // for sentences
};

// Brings one file into a folder, as SHA256.bin: from where an earlier try stopped, through broken
// connections, whole, checked and synced. Until then it is SHA256.part, which only one program at a time
// writes; since the name tells what is in it, a part fits whatever address the rest comes from.
class Download
{
public:
    // bytes there, of how many
    using Progress = std::function<void(qint64 there, qint64 size)>;

    // Takes the part, or throws Failure when another program has it.
    Download(Http &http, const QString &folder, const WantedFile &file);

    // Throws Failure. What was loaded is kept for the next try, except when it is wrong or the disk is full.
    void run(const Progress &progress);

private:
    bool wholeIsThere() const;
    void takePart();
    void hashPart();
    void requireRoom() const;
    void loadRest(const Progress &progress);
    HttpReply ask(const Progress &progress);
    QList<QByteArray> headers() const;
    void begin(const HttpReply &head, QByteArrayView firstPiece);
    void take(QByteArrayView piece);
    void startAgain();
    void finish();

    Http &m_http;
    QString m_folder;
    WantedFile m_file;
    QByteArray m_whole; // names of files
    QByteArray m_partName;
    QString m_etagName;
    FileDescriptor m_part;
    QCryptographicHash m_hash{QCryptographicHash::Sha256}; // of what is there
    qint64 m_there = 0;
    bool m_startedHere = true; // no byte is from an earlier try
};

} // namespace engine

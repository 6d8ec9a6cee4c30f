#pragma once

#include "core/FileDescriptor.h"

#include <QString>

#include <cstdint>
#include <span>

namespace engine {

// The sound of a recording, unpacked in a file without a name that goes with the object: for what is read more than once
// and is dear to open. A convenience only: where it cannot be made, the recording itself is read again.
class SoundCopy
{
public:
    // In the folder, for sound of about that length; given up for one of far more. Not made where the disk has not far
    // more room than it may take.
    SoundCopy(const QString &folder, double seconds);

    // 16 kHz mono, in order.
    void add(std::span<const int16_t> samples);

    // Whether all that was added is there.
    bool isWhole() const { return m_file.valid(); }

    // For an AudioReader, in this process and while the object lives.
    QString path() const;

private:
    void write(QByteArrayView bytes);

    FileDescriptor m_file;
    qint64 m_left = 0; // bytes that it may still take
};

} // namespace engine

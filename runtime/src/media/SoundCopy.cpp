#include "media/SoundCopy.h"

#include "core/Files.h"
#include "media/AudioReader.h"

#include <QDir>
#include <QSysInfo>

#include <array>
#include <cstring>

namespace engine {

using namespace Qt::StringLiterals;

namespace {

// So many times what the sound is said to take must be free: others write there too.
constexpr double roomFactor = 4;

// A recording may be longer than it says: so many times as long, and this much more.
constexpr double lengthFactor = 2;
constexpr qint64 lengthSlack = 1 << 16; // bytes

// Of a WAV in this computer's order of bytes, whose length is not known before its end, which is that of the file.
std::array<char, 44> header()
{
    constexpr quint32 open = 0xffffffff;
    constexpr quint16 bytes = sizeof(int16_t);
    std::array<char, 44> made{};
    const auto text = [&](size_t at, const char *four) { std::memcpy(made.data() + at, four, 4); };
    const auto number = [&](size_t at, auto value) { std::memcpy(made.data() + at, &value, sizeof value); };
    text(0, QSysInfo::ByteOrder == QSysInfo::LittleEndian ? "RIFF" : "RIFX");
    number(4, open);
    text(8, "WAVE");
    text(12, "fmt ");
    number(16, quint32(16));
    number(20, quint16(1)); // plain samples
    number(22, quint16(1)); // one channel
    number(24, quint32(sampleRate));
    number(28, quint32(sampleRate * bytes));
    number(32, bytes);
    number(34, quint16(8 * bytes));
    text(36, "data");
    number(40, open);
    return made;
}

} // namespace

SoundCopy::SoundCopy(const QString &folder, double seconds)
{
    const double most = seconds * sampleRate * double(sizeof(int16_t));
    if (!QDir().mkpath(folder) || double(roomAt(folder)) < roomFactor * most)
        return;
    m_left = qint64(lengthFactor * most) + lengthSlack;
    m_file = namelessFile(folder, "sound"_L1);
    write(header());
}

void SoundCopy::add(std::span<const int16_t> samples)
{
    write({reinterpret_cast<const char *>(samples.data()), qsizetype(samples.size_bytes())});
}

// One that is not whole goes at once, so that what it took of a full disk is there for others.
void SoundCopy::write(QByteArrayView bytes)
{
    m_left -= bytes.size();
    if (m_file.valid() && (m_left < 0 || !tryWriteAll(m_file.get(), bytes)))
        m_file.reset();
}

QString SoundCopy::path() const
{
    return u"/proc/self/fd/%1"_s.arg(m_file.get());
}

} // namespace engine

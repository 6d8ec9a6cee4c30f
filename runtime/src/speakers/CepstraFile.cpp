#include "speakers/CepstraFile.h"

#include "core/Failure.h"
#include "core/Files.h"

#include <cerrno>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

const QString writing = u"The file of voices could not be written"_s;

} // namespace

CepstraFile::CepstraFile(const QString &folder)
{
    makeFolder(folder, u"The folder for the speech recogniser could not be made"_s);
    m_file = namelessFile(folder, "voices"_L1);
    if (!m_file.valid())
        throw systemFailure(writing, errno);
}

CepstraFile::Place CepstraFile::append(const Cepstra &cepstra)
{
    const auto size = cepstra.size() * qsizetype(sizeof(float));
    const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(cepstra.data()), size);
    writeAll(m_file.get(), bytes, writing);
    const Place place{m_end, cepstra.cols()};
    m_end += size;
    return place;
}

Cepstra CepstraFile::read(const Place &place) const
{
    Cepstra cepstra(cepstrumSize, place.frames);
    auto *bytes = reinterpret_cast<char *>(cepstra.data());
    const auto size = cepstra.size() * qsizetype(sizeof(float));
    for (qsizetype done = 0; done < size;) {
        const ssize_t count =
            ::pread(m_file.get(), bytes + done, size_t(size - done), off_t(place.offset + done));
        if (count == 0 || (count < 0 && errno != EINTR))
            throw systemFailure(u"The file of voices could not be read"_s, EIO);
        done += count > 0 ? count : 0;
    }
    return cepstra;
}

} // namespace engine

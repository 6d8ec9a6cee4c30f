#pragma once

#include "core/FileDescriptor.h"
#include "speakers/Cepstra.h"

#include <QString>

#include <cstdint>

namespace engine {

// Frames put aside on the disk, in a file without a name, which goes with this process.
class CepstraFile
{
public:
    // Where some of them are.
    struct Place
    {
        int64_t offset = 0; // bytes
        Eigen::Index frames = 0;
    };

    // The folder is made where it is missing. Throws Failure, as the others do.
    explicit CepstraFile(const QString &folder);

    Place append(const Cepstra &cepstra);
    Cepstra read(const Place &place) const;

private:
    FileDescriptor m_file;
    int64_t m_end = 0;
};

} // namespace engine

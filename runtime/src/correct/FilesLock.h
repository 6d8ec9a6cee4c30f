#pragma once

#include "core/FileDescriptor.h"
#include "core/Paths.h"

namespace engine {

// The right to change the files of finished transcripts, held by one program at a time; the kernel gives it
// back when the program dies.
class FilesLock
{
public:
    enum class Patience { Wait, JustTry };

    // Throws Failure when the lock cannot be opened, or when another program holds it for too long.
    FilesLock(const Paths &paths, Patience patience);

    bool held() const { return m_file.valid(); }

private:
    FileDescriptor m_file;
};

} // namespace engine

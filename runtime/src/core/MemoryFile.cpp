#include "core/MemoryFile.h"

#include "core/Files.h"

#include <sys/mman.h>

namespace engine {

FileDescriptor memoryFile(const QByteArray &bytes)
{
    FileDescriptor file(::memfd_create("text", MFD_CLOEXEC));
    if (file.valid() && (!tryWriteAll(file.get(), bytes) || ::lseek(file.get(), 0, SEEK_SET) != 0))
        file.reset();
    return file;
}

} // namespace engine

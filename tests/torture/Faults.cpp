// A disk that fails and a clock that jumps, for programs that are started with this library loaded before others
// (LD_PRELOAD). What fails, and when, stands in a file in memory that the test writes to and this library reads.
//
// Only files below the folder TUPPI_FAULTS_UNDER can fail, but for those below TUPPI_FAULTS_SPARED; pipes, sockets and
// libraries go on as ever.

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <ctime>
#include <unistd.h>

namespace {

enum Operation : int32_t { Write = 1, Read = 2, Sync = 4, Create = 8, Rename = 16 };

// Known to faults.py as well.
struct Control
{
    std::atomic<int32_t> operations; // those that fail; 0: none
    std::atomic<int32_t> error;      // errno; 0: half of what was to be written is
    std::atomic<int32_t> spared;     // calls that pass before the first one fails
    std::atomic<int32_t> left;       // calls that will fail
    std::atomic<int32_t> failed;     // calls that have failed
    std::atomic<int32_t> clockReads; // of a clock that was wrong
    std::atomic<int64_t> clockOffset; // seconds
};

const char *under = nullptr;
const char *spared = nullptr;

Control *openControl()
{
    const char *name = std::getenv("TUPPI_FAULTS");
    under = std::getenv("TUPPI_FAULTS_UNDER");
    spared = std::getenv("TUPPI_FAULTS_SPARED");
    if (!name || !under || !spared)
        return nullptr;
    const int fd = int(::syscall(SYS_openat, AT_FDCWD, name, O_RDWR | O_CLOEXEC, 0));
    if (fd < 0)
        return nullptr;
    void *memory = ::mmap(nullptr, sizeof(Control), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    ::syscall(SYS_close, fd);
    return memory == MAP_FAILED ? nullptr : static_cast<Control *>(memory);
}

Control *control()
{
    static Control *const found = openControl();
    return found;
}

template <typename Function> Function next(Function, const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

bool standsUnder(const char *path)
{
    return std::strncmp(path, under, std::strlen(under)) == 0 && std::strncmp(path, spared, std::strlen(spared)) != 0;
}

bool standsUnder(int fd)
{
    char link[32] = "/proc/self/fd/";
    char *end = link + std::strlen(link);
    char digits[12];
    int count = 0;
    for (int rest = fd; count == 0 || rest > 0; rest /= 10)
        digits[count++] = char('0' + rest % 10);
    while (count > 0)
        *end++ = digits[--count];
    *end = '\0';
    char target[4096];
    const ssize_t length = ::readlink(link, target, sizeof target - 1);
    if (length <= 0)
        return false;
    target[length] = '\0';
    return standsUnder(target);
}

// Whether this call is to fail; it is counted then.
template <typename File> bool strikes(Operation operation, File file)
{
    Control *faults = control();
    if (!faults || (faults->operations.load() & operation) == 0 || faults->left.load() <= 0)
        return false;
    const int before = errno;
    const bool ours = standsUnder(file);
    errno = before;
    if (!ours || faults->spared.fetch_sub(1) > 0 || faults->left.fetch_sub(1) <= 0)
        return false;
    faults->failed.fetch_add(1);
    return true;
}

int refuse()
{
    errno = control()->error.load();
    return -1;
}

bool isThere(const char *path)
{
    const int before = errno;
    const bool there = ::syscall(SYS_faccessat, AT_FDCWD, path, F_OK) == 0;
    errno = before;
    return there;
}

// Whether making this file or folder is to fail: opening what is there needs no room.
bool cannotMake(const char *path)
{
    return !isThere(path) && strikes(Create, path);
}

// Whether cutting this file is to fail; half a cut there is not.
bool cannotCut(int fd)
{
    return control() && control()->error.load() != 0 && strikes(Write, fd);
}

// How much of it is written: all, half, or nothing (-1).
ssize_t allowed(int fd, size_t size)
{
    if (!strikes(Write, fd))
        return ssize_t(size);
    if (control()->error.load() != 0)
        return refuse();
    return ssize_t(size > 1 ? size / 2 : size);
}

int64_t clockOffset()
{
    Control *faults = control();
    const int64_t offset = faults ? faults->clockOffset.load() : 0;
    if (offset != 0)
        faults->clockReads.fetch_add(1);
    return offset;
}

} // namespace

extern "C" {

ssize_t write(int fd, const void *bytes, size_t size)
{
    static const auto real = next(&write, "write");
    const ssize_t count = allowed(fd, size);
    return count < 0 ? count : real(fd, bytes, size_t(count));
}

ssize_t pwrite(int fd, const void *bytes, size_t size, off_t at)
{
    static const auto real = next(&pwrite, "pwrite");
    const ssize_t count = allowed(fd, size);
    return count < 0 ? count : real(fd, bytes, size_t(count), at);
}

ssize_t pwrite64(int fd, const void *bytes, size_t size, off64_t at)
{
    static const auto real = next(&pwrite64, "pwrite64");
    const ssize_t count = allowed(fd, size);
    return count < 0 ? count : real(fd, bytes, size_t(count), at);
}

ssize_t copy_file_range(int from, off64_t *fromAt, int to, off64_t *toAt, size_t size, unsigned flags)
{
    static const auto real = next(&copy_file_range, "copy_file_range");
    const ssize_t count = allowed(to, size);
    return count < 0 ? count : real(from, fromAt, to, toAt, size_t(count), flags);
}

ssize_t read(int fd, void *bytes, size_t size)
{
    static const auto real = next(&read, "read");
    return strikes(Read, fd) ? refuse() : real(fd, bytes, size);
}

ssize_t pread(int fd, void *bytes, size_t size, off_t at)
{
    static const auto real = next(&pread, "pread");
    return strikes(Read, fd) ? refuse() : real(fd, bytes, size, at);
}

ssize_t pread64(int fd, void *bytes, size_t size, off64_t at)
{
    static const auto real = next(&pread64, "pread64");
    return strikes(Read, fd) ? refuse() : real(fd, bytes, size, at);
}

int fsync(int fd)
{
    static const auto real = next(&fsync, "fsync");
    return strikes(Sync, fd) ? refuse() : real(fd);
}

int fdatasync(int fd)
{
    static const auto real = next(&fdatasync, "fdatasync");
    return strikes(Sync, fd) ? refuse() : real(fd);
}

int ftruncate(int fd, off_t size) noexcept
{
    static const auto real = next(&ftruncate, "ftruncate");
    return cannotCut(fd) ? refuse() : real(fd, size);
}

int ftruncate64(int fd, off64_t size) noexcept
{
    static const auto real = next(&ftruncate64, "ftruncate64");
    return cannotCut(fd) ? refuse() : real(fd, size);
}

int mkdir(const char *path, mode_t mode) noexcept
{
    static const auto real = next(&mkdir, "mkdir");
    return cannotMake(path) ? refuse() : real(path, mode);
}

int rename(const char *from, const char *to) noexcept
{
    static const auto real = next(&rename, "rename");
    return strikes(Rename, to) ? refuse() : real(from, to);
}

int open(const char *path, int flags, ...)
{
    static const auto real = next(&open, "open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return (flags & O_CREAT) != 0 && cannotMake(path) ? refuse() : real(path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    static const auto real = next(&open64, "open64");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return (flags & O_CREAT) != 0 && cannotMake(path) ? refuse() : real(path, flags, mode);
}

int clock_gettime(clockid_t clock, timespec *now) noexcept
{
    static const auto real = next(&clock_gettime, "clock_gettime");
    const int result = real(clock, now);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        now->tv_sec += clockOffset();
    return result;
}

int gettimeofday(timeval *now, void *zone) noexcept
{
    static const auto real = next(&gettimeofday, "gettimeofday");
    const int result = real(now, zone);
    if (result == 0)
        now->tv_sec += clockOffset();
    return result;
}

time_t time(time_t *to) noexcept
{
    static const auto real = next(&time, "time");
    const time_t now = real(nullptr) + clockOffset();
    if (to)
        *to = now;
    return now;
}

} // extern "C"

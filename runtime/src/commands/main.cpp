#include "commands/Command.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

// A descriptor of ours that landed on 0, 1 or 2 would be mistaken for standard output.
static void fillStandardDescriptors()
{
    for (int fd = 0; fd <= 2; ++fd) {
        if (::fcntl(fd, F_GETFD) < 0 && ::open("/dev/null", fd == 0 ? O_RDONLY : O_WRONLY) != fd)
            ::_exit(1);
    }
}

// No application object: nothing here needs an event loop, and every command starts sooner without one.
int main(int count, char **values)
{
    fillStandardDescriptors();
    QStringList arguments;
    for (int i = 1; i < count; ++i)
        arguments.append(QFile::decodeName(values[i]));
    return engine::runCommandLine(arguments);
}

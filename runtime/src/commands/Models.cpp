#include "commands/Command.h"

#include "core/ArgumentVector.h"
#include "core/Failure.h"
#include "core/Paths.h"

#include <cerrno>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace engine::commands {

// Becomes the program that can talk to other computers; everything else starts faster without it.
int models(const Arguments &arguments)
{
    const QString program = executableFolder() + u"/tuppi-engine-models"_s;
    QStringList words;
    for (auto option = arguments.options.cbegin(); option != arguments.options.cend(); ++option)
        words += option.key() == u"--json" ? option.key() : option.key() + u'=' + option.value();
    words += u"--"_s;
    words += arguments.words;
    const ArgumentVector command(program, words);
    ::execv(command.program(), command.arguments());
    throw systemFailure(
        u"The engine is not complete, install it again: “"_s + program + u"” could not be started"_s, errno);
}

} // namespace engine::commands

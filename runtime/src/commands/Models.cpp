#include "commands/Command.h"

#include "core/Failure.h"
#include "core/Paths.h"

#include <QFile>

#include <cerrno>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace engine::commands {

// Becomes the program that can talk to other computers; everything else starts faster without it.
int models(const Arguments &arguments)
{
    const QString program = executableFolder() + u"/tuppi-engine-models"_s;
    std::vector<QByteArray> texts{QFile::encodeName(program)};
    for (auto option = arguments.options.cbegin(); option != arguments.options.cend(); ++option)
        texts.push_back(QFile::encodeName(option.key() == u"--json" ? option.key()
                                                                    : option.key() + u'=' + option.value()));
    texts.push_back("--");
    for (const QString &word : arguments.words)
        texts.push_back(QFile::encodeName(word));
    std::vector<char *> pointers;
    for (QByteArray &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    ::execv(pointers.front(), pointers.data());
    throw systemFailure(
        u"The engine is not complete, install it again: “"_s + program + u"” could not be started"_s, errno);
}

} // namespace engine::commands

#include "core/Failure.h"
#include "models/ModelCommands.h"
#include "models/ModelSyntax.h"

#include <QFile>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>

using namespace Qt::StringLiterals;

namespace {

QByteArray answer(int count, char **values)
{
    if (count == 2 && std::strcmp(values[1], "--check") == 0)
        return engine::checkOllama();
    if (count == 2 && std::strcmp(values[1], "--ask") == 0) {
        QFile input;
        return engine::askTextModel(input.open(stdin, QIODevice::ReadOnly) ? input.readAll() : QByteArray());
    }
    QStringList arguments;
    for (int i = 1; i < count; ++i)
        arguments.append(QFile::decodeName(values[i]));
    return engine::runModels(engine::readArguments(engine::modelsSyntax(), arguments));
}

int report(const char *sentence, int exitStatus)
{
    std::fprintf(stderr, "Error: %s\n", sentence);
    return exitStatus;
}

} // namespace

int main(int count, char **values)
{
    // A download goes on when whoever asked for it has gone.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const QByteArray text = answer(count, values);
        const bool written =
            std::fwrite(text.constData(), 1, size_t(text.size()), stdout) == size_t(text.size()) &&
            std::fflush(stdout) == 0;
        return written ? 0 : report("The answer could not be written.", 1);
    } catch (const engine::Failure &failure) {
        return report(failure.what(), failure.exitStatus());
    } catch (const std::bad_alloc &) {
        return report("There is not enough memory.", 1);
    }
}

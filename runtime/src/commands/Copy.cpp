#include "commands/Command.h"

#include "core/Clipboard.h"
#include "core/Failure.h"
#include "correct/Correction.h"

using namespace Qt::StringLiterals;

namespace engine::commands {

int copy(const Arguments &arguments)
{
    if (arguments.words.first() != u"transcript")
        throw usageFailure(u"“"_s + arguments.words.first() +
                           u"” cannot be copied. Usage: call copy transcript ID"_s);
    Database database(Paths::ofThisUser());
    const QString text = currentCleanText(database, arguments.words.at(1));
    if (text.isEmpty())
        throw Failure(u"This transcript has no text."_s);
    copyToClipboard(text);
    return 0;
}

} // namespace engine::commands

#include "store/Settings.h"

#include "commands/Command.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace engine::commands {

int settings(const Arguments &arguments)
{
    Database database(Paths::ofThisUser());
    if (arguments.has(u"--library"))
        changeLibrary(database, arguments.value(u"--library"));
    const QString library = libraryInUse(database).folder;
    if (arguments.has(u"--json"))
        print(QJsonDocument(QJsonObject{{u"library"_s, library}}).toJson(QJsonDocument::Compact) + '\n');
    else
        printLine(u"Transcripts folder: "_s + library);
    return 0;
}

} // namespace engine::commands

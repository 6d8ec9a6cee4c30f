#include "Fuzz.h"

#include "app/StartRecord.h"
#include "app/WaitingQueue.h"
#include "settings/Defaults.h"
#include "settings/L.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace tuppi;

/// The settings file as the user's disk may hold it: whatever it is, what is stored afterwards is there the
/// next time.
void readInput(const QByteArray &bytes)
{
    QTemporaryDir folder;
    qputenv("HOME", QFile::encodeName(folder.path()));
    const QString path = folder.filePath(u"settings.json"_s);
    QFile file(path);
    require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    {
        Defaults defaults(path);
        for (const DefaultKey &key : DefaultsTable())
            defaults.value(key.name);
        ChosenInterfaceLanguage(defaults.value(u"AppleLanguages"_s));
        const WaitingQueue queue = RestoredQueue(defaults.value(u"waitingQueue"_s));
        require(RestoredQueue(StoredQueue(queue)) == queue);
        RestoredStart(defaults.value(u"startInFlight"_s));
        require(defaults.setValue(u"txtFormat"_s, u"plain"_s));
    }
    require(Defaults(path).text(u"txtFormat"_s) == "plain"_L1);
}

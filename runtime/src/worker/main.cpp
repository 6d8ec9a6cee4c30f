#include "core/Failure.h"
#include "core/SpeechModel.h"
#include "media/AudioReader.h"
#include "recognise/Recogniser.h"
#include "worker/Worker.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <cstring>
#include <link.h>
#include <malloc.h>

using namespace Qt::StringLiterals;

namespace {

QString recogniserTrouble()
{
    try {
        engine::pocketSphinx()->check();
        return {};
    } catch (const engine::Failure &failure) {
        return failure.sentence();
    }
}

bool tell(const QString &part, const QJsonValue &found)
{
    const QByteArray line = QJsonDocument(QJsonObject{{part, found}}).toJson(QJsonDocument::Compact) + '\n';
    return std::fwrite(line.constData(), 1, size_t(line.size()), stdout) == size_t(line.size()) &&
           std::fflush(stdout) == 0;
}

QJsonArray loadedLibraries()
{
    QStringList paths;
    const auto note = [](dl_phdr_info *library, size_t, void *into) {
        if (library->dlpi_name[0] == '/')
            static_cast<QStringList *>(into)->append(QFile::decodeName(library->dlpi_name));
        return 0;
    };
    ::dl_iterate_phdr(note, &paths);
    return QJsonArray::fromStringList(paths);
}

// A line for each part. The recogniser comes behind decoding: the library that reads the model falls over some kinds
// of damage, which is told by the line that never comes.
int check()
{
    return tell(u"decoding"_s, engine::decodingTrouble()) && tell(u"recogniser"_s, recogniserTrouble()) &&
                   tell(u"libraries"_s, loadedLibraries())
               ? 0
               : 1;
}

} // namespace

int main(int count, char **values)
{
    if (count == 2 && std::strcmp(values[1], "--check") == 0)
        return check();
    // What was freed goes back to the system at once, where the library would learn from one large piece of sound to
    // keep all that follow.
    ::mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    ::mallopt(M_TRIM_THRESHOLD, 256 * 1024);
    try {
        return engine::Worker(engine::Paths::ofThisUser()).run();
    } catch (const engine::Failure &failure) {
        std::fprintf(stderr, "Error: %s\n", failure.what());
        return 1;
    }
}

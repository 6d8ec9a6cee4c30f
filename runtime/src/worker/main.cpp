#include "core/Failure.h"
#include "core/SpeechModel.h"
#include "media/AudioReader.h"
#include "recognise/Recogniser.h"
#include "worker/Worker.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <cstring>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

// All that people do at the computer meanwhile comes first.
constexpr int priority = 10;

QString recogniserTrouble()
{
    try {
        engine::chooseRecogniser(u"auto"_s, u"en"_s)->prepare();
        return {};
    } catch (const engine::Failure &failure) {
        return failure.sentence();
    }
}

int check()
{
    const QJsonObject found{{u"recogniser"_s, recogniserTrouble()},
                            {u"decoding"_s, engine::decodingTrouble()}};
    const QByteArray answer = QJsonDocument(found).toJson(QJsonDocument::Compact) + '\n';
    return std::fwrite(answer.constData(), 1, size_t(answer.size()), stdout) == size_t(answer.size()) ? 0 : 1;
}

} // namespace

int main(int count, char **values)
{
    if (count == 2 && std::strcmp(values[1], "--check") == 0)
        return check();
    ::setpriority(PRIO_PROCESS, 0, priority);
    try {
        return engine::Worker(engine::Paths::ofThisUser()).run();
    } catch (const engine::Failure &failure) {
        std::fprintf(stderr, "Error: %s\n", failure.what());
        return 1;
    }
}

#include "core/Failure.h"
#include "core/FileDescriptor.h"
#include "core/SpeechModel.h"
#include "media/AudioReader.h"
#include "recognise/Recogniser.h"
#include "worker/Worker.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace {

QString recogniserTrouble()
{
    try {
        engine::chooseRecogniser(u"auto"_s, u"en"_s)->check();
        return {};
    } catch (const engine::Failure &failure) {
        return failure.sentence();
    }
}

// In a process of its own: the library that reads the model falls over some kinds of damage.
QString recogniserTroubleIfAny()
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        return recogniserTrouble();
    const engine::FileDescriptor reading(ends[0]);
    engine::FileDescriptor writing(ends[1]);
    const pid_t child = ::fork();
    if (child == 0) {
        const QByteArray sentence = recogniserTrouble().toUtf8();
        ::_exit(::write(writing.get(), sentence.constData(), size_t(sentence.size())) == sentence.size() ? 0
                                                                                                         : 1);
    }
    writing.reset();
    QByteArray sentence(4096, '\0'); // no more than a pipe takes at once
    sentence.resize(std::max<ssize_t>(0, ::read(reading.get(), sentence.data(), size_t(sentence.size()))));
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || status != 0)
        return u"The speech model is damaged. Install it again."_s;
    return QString::fromUtf8(sentence);
}

int check()
{
    const QJsonObject found{{u"recogniser"_s, recogniserTroubleIfAny()},
                            {u"decoding"_s, engine::decodingTrouble()}};
    const QByteArray answer = QJsonDocument(found).toJson(QJsonDocument::Compact) + '\n';
    return std::fwrite(answer.constData(), 1, size_t(answer.size()), stdout) == size_t(answer.size()) ? 0 : 1;
}

} // namespace

int main(int count, char **values)
{
    if (count == 2 && std::strcmp(values[1], "--check") == 0)
        return check();
    try {
        return engine::Worker(engine::Paths::ofThisUser()).run();
    } catch (const engine::Failure &failure) {
        std::fprintf(stderr, "Error: %s\n", failure.what());
        return 1;
    }
}

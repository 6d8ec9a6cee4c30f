#include "worker/TextModel.h"

#include "core/ChildProgram.h"
#include "core/Paths.h"
#include "store/Answers.h"
#include "store/Settings.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr int answerLookMs = 100;
constexpr int mostFailures = 2;

} // namespace

TextModel::TextModel(Database &database, JobControl &control, std::function<void(double)> awaited)
    : m_database(database)
    , m_control(control)
    , m_name(textModel(database))
    , m_awaited(std::move(awaited))
{
}

std::optional<QString> TextModel::ask(const ModelQuestion &question)
{
    const qint64 job = m_control.job().seq;
    const QByteArray key = questionKey(m_name, question);
    if (std::optional<QString> kept = keptAnswer(m_database, job, key))
        return kept;
    if (!chosen() || m_failures >= mostFailures)
        return std::nullopt;
    std::optional<QString> answer = answerTo(question);
    m_failures = answer ? 0 : m_failures + 1;
    if (answer)
        m_control.note([&] { keepAnswer(m_database, job, key, *answer); });
    return answer;
}

std::optional<QString> TextModel::answerTo(const ModelQuestion &question)
{
    const QJsonObject asked{{u"model"_s, m_name},
                            {u"system"_s, question.system},
                            {u"text"_s, question.text},
                            {u"json"_s, question.json}};
    ChildProgram child(executableFolder() + u"/tuppi-engine-models"_s, {u"--ask"_s},
                       QJsonDocument(asked).toJson(QJsonDocument::Compact));
    QElapsedTimer since;
    since.start();
    const auto seconds = [&] { return double(since.elapsed()) / 1000; };
    while (!child.ended(answerLookMs)) {
        m_control.check();
        m_awaited(seconds() / (seconds() + m_usualSeconds));
    }
    const ProgramResult result = child.finish(0);
    if (result.exitStatus != 0)
        return std::nullopt;
    m_usualSeconds = (m_usualSeconds + seconds()) / 2;
    return QString::fromUtf8(result.output);
}

} // namespace engine

#include "Fuzz.h"

#include "viewer/PageScripts.h"
#include "viewer/ViewerMessage.h"

#include <QJsonDocument>
#include <QMap>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

constexpr auto id = "id-1"_L1;

/// Every callback with where its answer says whether it went well, and how many values it has at least and at most.
struct Shape
{
    qsizetype outcome;
    qsizetype fewest;
    qsizetype most;
};

const QMap<QString, Shape> shapes{{u"tuppiRenamed"_s, {0, 4, 4}},
                                  {u"tuppiSpeakerSaved"_s, {1, 4, 4}},
                                  {u"tuppiJoined"_s, {1, 3, 4}},
                                  {u"tuppiSplit"_s, {1, 3, 5}},
                                  {u"tuppiSaved"_s, {1, 4, 4}}};

/// `succeeds` is what the page must be told.
void requireAnswer(const ViewerAnswer &answer, bool succeeds, bool isDeep)
{
    require(shapes.contains(answer.callback));
    const Shape shape = shapes.value(answer.callback);
    require(answer.arguments.size() >= shape.fewest && answer.arguments.size() <= shape.most);
    require(answer.arguments.at(shape.outcome) == QJsonValue(succeeds));
    require(shape.outcome == 0 || answer.arguments.at(0).isDouble());

    const QString script = AnswerScript(answer);
    const QString before = u"window."_s + answer.callback + u".apply(null, "_s;
    require(script.startsWith(before) && script.endsWith(u')'));
    for (const QChar lineEnd : {QChar(u'\n'), QChar(u'\r'), QChar(0x2028), QChar(0x2029)})
        require(!script.contains(lineEnd));
    const QByteArray json = script.mid(before.size()).chopped(1).toUtf8();
    // What Qt reads may be one level too deep for it once it stands in a list; a page reads it all the same.
    const QByteArray meant = QJsonDocument(answer.arguments).toJson();
    require(isDeep || QJsonDocument::fromJson(json).array() == QJsonDocument::fromJson(meant).array());
}

void requireCommand(const ViewerMessage &message)
{
    const QStringList &arguments = message.arguments;
    require(arguments.size() >= 4 && arguments.at(1) == id && arguments.contains("--json"_L1));
    switch (message.kind) {
    case Correction::Rename:
        require(arguments.at(0) == "speaker"_L1 && arguments.at(2) == "--rename"_L1);
        require(arguments.at(3) == u"--old="_s + message.body.value("old"_L1).toString());
        require(arguments.at(4) == u"--new="_s + message.body.value("name"_L1).toString());
        break;
    case Correction::Speaker:
        require(arguments.at(0) == "speaker"_L1 && arguments.size() == 5);
        require(arguments.at(4) == "--none"_L1 || arguments.at(4).startsWith("--name="_L1));
        break;
    case Correction::Join:
    case Correction::Split:
        require(arguments.at(0) == "split"_L1 && arguments.size() == 5);
        require((message.kind == Correction::Join) == (arguments.at(3) == "--join"_L1));
        break;
    case Correction::Edit:
        require(arguments.at(0) == "edit"_L1 && arguments.size() == 6 && arguments.at(4) == "--"_L1);
        require(arguments.at(5) == message.body.value("text"_L1).toString());
    }
}

} // namespace

/// A message of the viewer page, up to the script that answers it. The first line is what the page posts, the
/// second what the engine replies, the rest its standard error.
void readInput(const QByteArray &bytes)
{
    const qsizetype first = bytes.indexOf('\n');
    const qsizetype second = first < 0 ? -1 : bytes.indexOf('\n', first + 1);
    const QJsonDocument body = QJsonDocument::fromJson(first < 0 ? bytes : bytes.left(first));
    if (!body.isObject())
        return;
    const QByteArray out = first < 0 ? QByteArray() : bytes.mid(first + 1, second < 0 ? -1 : second - first - 1);
    const QByteArray err = second < 0 ? QByteArray() : bytes.mid(second + 1);

    constexpr int deep = 500;
    const bool isDeep = bytes.count('[') + bytes.count('{') > deep;
    const ViewerMessage unknown = ReadViewerMessage(body.object(), {});
    require(unknown.arguments.isEmpty());
    requireAnswer(Refusal(unknown).answer, false, isDeep);

    const ViewerMessage message = ReadViewerMessage(body.object(), id);
    if (message.arguments.isEmpty()) {
        requireAnswer(Refusal(message).answer, false, isDeep);
        return;
    }
    requireCommand(message);
    const ViewerReply failed = ReadViewerReply(message, {1, out, err});
    require(!failed.changesList);
    requireAnswer(failed.answer, false, isDeep);
    const ViewerReply replied = ReadViewerReply(message, {0, out, err});
    const bool succeeds = QJsonDocument::fromJson(out).isObject();
    require(replied.changesList == (succeeds && message.kind == Correction::Edit));
    requireAnswer(replied.answer, succeeds, isDeep);
}

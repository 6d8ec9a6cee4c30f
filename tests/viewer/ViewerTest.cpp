#include "viewer/ViewerTest.h"

#include "ui/MainWindow.h"
#include "ui/Sheet.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTest>

#include <unistd.h>

namespace tuppi::test {

using namespace Qt::StringLiterals;

namespace {

constexpr auto head = R"(<!doctype html><meta charset="utf-8"><title>Page</title><script>
var answers = [], tab = window.TUPPI_TAB || 'none', texts = window.TUPPI_I18N, rtl = window.TUPPI_RTL;
['Renamed', 'SpeakerSaved', 'Split', 'Joined', 'Saved'].forEach(function (name) {
  window['tuppi' + name] = function () { answers.push([name].concat(Array.from(arguments))); };
});
function showTab(name) { tab = name; }
function say(body) { window.webkit.messageHandlers.tuppi.postMessage(body); }
</script>)";

} // namespace

void ViewerTest::SetUp()
{
    create();
    m_app->applicationDidFinishLaunching(AppDelegate::Face::Window);
    ASSERT_TRUE(waitFor([this] { return jobs().loaded && !jobs().polling; }));
}

void ViewerTest::TearDown()
{
    destroy();
    EXPECT_TRUE(waitFor([] { return engineProcesses("renderer").isEmpty(); })) << "a page outlived the application";
}

QString ViewerTest::makeCall(const QString &name, const QByteArray &page)
{
    QDir().mkpath(callDir(name));
    writeFile(callDir(name) + u"/viewer.html"_s, page.startsWith("<!doctype") ? page : head + page);
    return callDir(name);
}

QJsonObject ViewerTest::row(const QString &callDir, const QString &title)
{
    return {{u"id"_s, u"row"_s}, {u"call_dir"_s, callDir}, {u"title"_s, title}};
}

void ViewerTest::putIntoHistory(const QStringList &names)
{
    QJsonArray history;
    for (const QString &name : names)
        history.append(QJsonObject{{u"id"_s, QString(u"id-"_s + name)},
                                   {u"status"_s, u"ready"_s},
                                   {u"title"_s, name},
                                   {u"call_dir"_s, callDir(name)}});
    m_engine.answerHistory(QJsonDocument(history).toJson());
    poll();
}

ResultWindow *ViewerTest::window(const QString &callDir, const QString &kind) const
{
    return m_app->viewer().resultWindows.value(callDir + u'#' + kind);
}

ViewerWindow *ViewerTest::viewer(const QString &callDir) const
{
    return qobject_cast<ViewerWindow *>(window(callDir));
}

ViewerWindow *ViewerTest::open(const QString &callDir, bool summary)
{
    m_app->showResult(row(callDir), summary);
    ViewerWindow *opened = viewer(callDir);
    // A page that is being loaded loses the question.
    constexpr int soon = 100;
    const auto isLoaded = [&] { return ask(opened, u"document.readyState"_s, soon) == "\"complete\""; };
    if (!opened || !waitFor(isLoaded))
        qFatal("the page did not open");
    return opened;
}

WebView *ViewerTest::page(ViewerWindow *window)
{
    return static_cast<WebView *>(window->findChild<QWidget *>(u"viewerPage"_s));
}

QByteArray ViewerTest::ask(ViewerWindow *window, const QString &expression, int patienceMilliseconds)
{
    static int probes = 0;
    const QString probe = QString::number(++probes);
    WebView *view = page(window);
    QByteArray answer;
    constexpr auto dropsProbes = "dropsProbes";
    if (!view->property(dropsProbes).toBool()) {
        // A probe that comes late must not reach the application, which would refuse it as a correction.
        view->setProperty(dropsProbes, true);
        view->onMessage = [pass = view->onMessage](const QJsonObject &body) {
            if (!body.contains("probe"_L1))
                pass(body);
        };
    }
    const auto before = view->onMessage;
    view->onMessage = [&](const QJsonObject &body) {
        if (body.value("probe"_L1).toString() == probe)
            answer = body.value("value"_L1).toString().toUtf8();
        else
            before(body);
    };
    view->run(u"window.webkit.messageHandlers.tuppi.postMessage({probe: '%1', value: JSON.stringify(%2) || 'undefined'})"_s
                  .arg(probe, expression));
    const bool answered = QTest::qWaitFor([&] { return !answer.isEmpty(); }, patienceMilliseconds);
    view->onMessage = before;
    return answered ? answer : "(no answer)"_ba;
}

bool ViewerTest::becomes(ViewerWindow *window, const QString &expression, const QByteArray &json)
{
    return waitFor([&] { return ask(window, expression) == json; });
}

void ViewerTest::post(ViewerWindow *window, const QString &body)
{
    page(window)->run(u"say(%1)"_s.arg(body));
}

Sheet *ViewerTest::sheet()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *sheet = qobject_cast<Sheet *>(widget); sheet && sheet->isVisible())
            return sheet;
    }
    return nullptr;
}

namespace {

int parentOf(int process)
{
    // The name before it may hold blanks, and ends in a parenthesis.
    const QByteArray status = readFile(u"/proc/%1/stat"_s.arg(process));
    return status.mid(status.lastIndexOf(')') + 2).split(' ').value(1).toInt();
}

bool isOurs(int process)
{
    while (process > 1 && process != ::getpid())
        process = parentOf(process);
    return process == ::getpid();
}

} // namespace

QList<int> engineProcesses(const QByteArray &kind)
{
    QList<int> found;
    for (const QString &name : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        const QByteArray line = readFile(u"/proc/%1/cmdline"_s.arg(name));
        if (line.contains("--type=" + kind) && isOurs(name.toInt()))
            found.append(name.toInt());
    }
    return found;
}

} // namespace tuppi::test

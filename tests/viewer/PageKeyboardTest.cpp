// The engine's page by keyboard alone, in the application: what Tab reaches, that it shows, and the way out again.

#include "viewer/ViewerTest.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTest>
#include <QWindow>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::waitFor;

namespace {

/// What has the keyboard: a name in the page, else the name of the widget around it.
constexpr auto nameInPage =
    "(e => e === document.body ? '' : e.id || e.classList[0] || e.getAttribute('role'))(document.activeElement)";

/// Whether a ring, or the edge of the field around it, tells what has the keyboard. The colour is the page's blue.
constexpr auto showsInPage = R"((e => {
  const blue = 'rgb(0, 87, 183)', own = getComputedStyle(e), around = getComputedStyle(e.parentElement);
  const ring = own.outlineStyle === 'solid' && parseFloat(own.outlineWidth) >= 2 && own.outlineColor === blue;
  return ring || around.borderColor === blue && around.boxShadow.includes(blue);
})(document.activeElement))";

class ThePageByKeyboard : public test::ViewerTest
{
protected:
    void openPage(bool summary)
    {
        QByteArray html = test::readFile(QStringLiteral(TUPPI_PAGE));
        html.replace("@TUPPI_TRANSCRIPT@", R"({"title": "Interview", "language": "en", "duration": 6,
            "audio": null, "speakers": ["Ann", "Ben"], "summary": {"paragraphs": ["They met."], "tasks": []}, "segments": [
            {"start": 0, "end": 3, "speaker": "Ann", "text": "Good morning."},
            {"start": 3, "end": 6, "speaker": "Ben", "text": "How are you?"}]})");
        makeCall(u"a"_s, html);
        putIntoHistory({u"a"_s});
        m_viewer = open(callDir(u"a"_s), summary);
        m_viewer->activateWindow();
        ASSERT_TRUE(waitFor([this] { return m_viewer->isActiveWindow(); }));
        ASSERT_TRUE(becomes(m_viewer, u"state.tab"_s, summary ? "\"summary\"" : "\"transcript\""));
        ASSERT_TRUE(becomes(m_viewer, u"document.hasFocus()"_s, "true"));
    }

    bool isInPage() const { return page(m_viewer)->isAncestorOf(QApplication::focusWidget()); }

    QByteArray where() const
    {
        if (!isInPage())
            return QApplication::focusWidget() ? QApplication::focusWidget()->objectName().toUtf8() : QByteArray();
        return ask(m_viewer, QString::fromLatin1(nameInPage)).replace('"', "");
    }

    /// Presses the key and waits until something else has the keyboard.
    QByteArray step(Qt::Key key)
    {
        const QByteArray before = where();
        QTest::keyClick(QGuiApplication::focusWindow(), key,
                        key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
        EXPECT_TRUE(waitFor([&] { return where() != before; })) << "held by " << before.constData();
        return where();
    }

    void walk(Qt::Key key, const QList<QByteArray> &stops)
    {
        for (const QByteArray &stop : stops) {
            ASSERT_EQ(step(key), stop);
            if (isInPage()) {
                EXPECT_EQ(ask(m_viewer, QString::fromLatin1(showsInPage)), "true") << stop.constData();
            }
        }
    }

    ViewerWindow *m_viewer = nullptr;
};

TEST_F(ThePageByKeyboard, TabGoesThroughTheTranscriptAndOut)
{
    openPage(false);
    walk(Qt::Key_Tab, {"tab-transcript", "query", "headed", "time", "speaker", "set-speaker", "edit-line",
                       "saveWindowText", "shareWindowText", "tab-transcript"});
    walk(Qt::Key_Backtab, {"shareWindowText", "saveWindowText", "edit-line", "set-speaker", "speaker", "time", "headed",
                           "query", "tab-transcript"});
}

TEST_F(ThePageByKeyboard, TabGoesThroughTheSummaryAndOut)
{
    openPage(true);
    walk(Qt::Key_Tab, {"tab-summary", "panel-summary", "saveWindowText", "shareWindowText", "tab-summary"});
}

TEST_F(ThePageByKeyboard, TheEditorAndTheMenuOfSpeakersAreOpenedAndLeft)
{
    openPage(false);
    walk(Qt::Key_Tab, {"tab-transcript", "query", "headed", "time", "speaker"});
    QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_Return);
    ASSERT_TRUE(becomes(m_viewer, u"document.getElementById('speaker-menu').open"_s, "true"));
    EXPECT_EQ(where(), "name");
    QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_Escape);
    ASSERT_TRUE(becomes(m_viewer, u"document.getElementById('speaker-menu').open"_s, "false"));
    EXPECT_TRUE(waitFor([this] { return where() == "speaker"; }));
    QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_F2);
    ASSERT_TRUE(becomes(m_viewer, u"state.editor !== null && document.activeElement === area"_s, "true"));
    QTest::keyClick(QGuiApplication::focusWindow(), Qt::Key_Escape);
    ASSERT_TRUE(becomes(m_viewer, u"state.editor === null"_s, "true"));
    EXPECT_TRUE(waitFor([this] { return where() == "headed"; }));
}

TEST_F(ThePageByKeyboard, ALineThatIsBeingWrittenWaitsWhileAnotherWindowIsUsed)
{
    openPage(false);
    page(m_viewer)->run(u"openEditor(state.lines[1], 0); area.value = 'Half a li'; area.setSelectionRange(4, 4)"_s);
    ASSERT_TRUE(becomes(m_viewer, u"document.activeElement === area"_s, "true"));
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(becomes(m_viewer, u"document.hasFocus()"_s, "false"));
    EXPECT_EQ(ask(m_viewer, u"state.editor !== null && area.isConnected"_s), "true");
    m_viewer->activateWindow();
    ASSERT_TRUE(becomes(m_viewer, u"document.hasFocus()"_s, "true"));
    EXPECT_EQ(ask(m_viewer, u"[document.activeElement === area, area.value, area.selectionStart]"_s),
              R"([true,"Half a li",4])");
    EXPECT_EQ(m_engine.count(u"edit"_s), 0);
}

TEST_F(ThePageByKeyboard, TheMenuOverALineThatIsBeingWrittenPastesIntoIt)
{
    openPage(false);
    page(m_viewer)->run(u"openEditor(state.lines[1], 0); area.select()"_s);
    ASSERT_TRUE(becomes(m_viewer, u"document.activeElement === area"_s, "true"));
    const auto number = [&](const char *side) {
        return ask(m_viewer, u"Math.round(area.getBoundingClientRect().%1)"_s.arg(QLatin1StringView(side))).toInt();
    };
    QApplication::clipboard()->setText(u"Pasted."_s);
    QTest::mouseClick(QApplication::focusWidget(), Qt::RightButton, {}, QPoint(number("x") + 8, number("y") + 8));
    const auto menu = [this] { return m_viewer->findChild<QMenu *>(u"viewerMenu"_s); };
    ASSERT_TRUE(waitFor([&] { return menu() && menu()->isVisible(); }));
    EXPECT_EQ(ask(m_viewer, u"state.editor !== null"_s), "true");
    menu()->findChild<QAction *>(u"paste"_s)->trigger();
    menu()->close();
    EXPECT_TRUE(becomes(m_viewer, u"state.editor !== null && area.value.includes('Pasted.')"_s, "true"));
    EXPECT_EQ(ask(m_viewer, u"document.activeElement === area"_s), "true");
}

} // namespace

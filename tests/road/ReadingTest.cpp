// A recording's way with the real engine: transcribed, read, corrected by hand, taken out and thrown away.

#include "viewer/ViewerTest.h"
#include "window/WindowTest.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::click;
using test::press;
using test::readFile;
using test::waitFor;

namespace {

/// A line as a person reads it.
struct Line
{
    QString speaker;
    QString text;

    bool operator==(const Line &) const = default;
};

void PrintTo(const Line &line, std::ostream *stream)
{
    *stream << line.speaker.toStdString() << ": " << line.text.toStdString();
}

/// The recogniser takes longer than the patience of one wait.
bool waitLong(const std::function<bool()> &condition)
{
    constexpr int minutes = 10;
    for (int minute = 0; minute < minutes; ++minute) {
        if (waitFor(condition))
            return true;
    }
    return false;
}

QString clock(double seconds)
{
    return QTime::fromMSecsSinceStartOfDay(int(seconds) * 1000).toString(u"hh:mm:ss"_s);
}

/// What is said in subtitles of either kind, as one text.
QString spoken(const QByteArray &subtitles)
{
    QStringList texts;
    const QStringList blocks = QString::fromUtf8(subtitles).split(u"\n\n"_s);
    for (const QString &block : blocks) {
        static const QRegularExpression voice(u"^<v [^>]*>"_s);
        if (block.contains(u" --> "_s))
            texts.append(block.section(u'\n', -1).remove(voice));
    }
    return texts.join(u' ');
}

class Reading : public test::WindowTest
{
protected:
    void SetUp() override
    {
        m_engine.uninstall();
        ASSERT_EQ(QProcess::execute(QStringLiteral(TUPPI_SOURCE "/runtime/install-engine"),
                                    {QStringLiteral(TUPPI_BUILD)}),
                  0);
        QDir().mkpath(documents());
        // The lines begin without speakers, so that every name is one that was given by hand.
        QDir().mkpath(QFileInfo(settingsPath()).path());
        test::writeFile(settingsPath(), R"({"speakers": false})");
    }
    void TearDown() override
    {
        WindowTest::TearDown();
        EXPECT_TRUE(waitFor([] { return test::engineProcesses("renderer").isEmpty(); }));
    }

    QString documents() const { return m_engine.home() + u"/Documents"_s; }
    QJsonObject only() const
    {
        const Rows &rows = m_app->list().snapshot.rows;
        return rows.isEmpty() ? QJsonObject() : rows.first();
    }
    QString id() const { return only().value("id"_L1).toString(); }
    QString callDir() const { return only().value("call_dir"_L1).toString(); }
    bool isEmptyList() const
    {
        return waitFor([this] { return m_app->list().snapshot.rows.isEmpty(); });
    }
    QByteArray inCallDir(const QString &name) const { return readFile(m_callDir + u'/' + name); }
    QByteArray technical(const QString &name) const { return inCallDir(u"Technical files/"_s + name); }
    QJsonObject kept() const { return test::object(technical(u"segments.json"_s)); }
    QJsonObject pageData() const
    {
        const QByteArray page = technical(u"viewer.html"_s);
        const QByteArray mark = R"(<script type="application/json" id="transcript">)";
        const qsizetype start = page.indexOf(mark) + mark.size();
        return test::object(page.mid(start, page.indexOf("</script>", start) - start));
    }
    static QList<Line> linesIn(const QJsonArray &segments)
    {
        QList<Line> lines;
        for (const QJsonValue &segment : segments)
            lines.append({segment["speaker"_L1].toString(), segment["text"_L1].toString()});
        return lines;
    }

    ViewerWindow *viewer() const
    {
        return qobject_cast<ViewerWindow *>(m_app->viewer().resultWindows.value(m_callDir + u"#viewer"_s));
    }
    static void bringToFront(QWidget *widget)
    {
        widget->activateWindow();
        ASSERT_TRUE(waitFor([&] { return widget->isActiveWindow(); }));
    }

    // The page, by mouse and keys alone; it is only read by script.

    QByteArray ask(const QString &expression) const
    {
        constexpr int patience = 60'000;
        return test::ViewerTest::ask(viewer(), expression, patience);
    }
    bool becomes(const QString &expression) const
    {
        return test::ViewerTest::becomes(viewer(), expression, "true");
    }
    QList<Line> shownLines() const
    {
        return linesIn(
            test::array(ask(u"state.lines"_s + u".map(({speaker, text}) => ({speaker, text}))"_s)));
    }
    QPoint placeOf(const QString &element) const
    {
        const QJsonArray place = test::array(ask(
            u"(({x, y, width, height}) => [x + width / 2, y + height / 2])((%1).getBoundingClientRect())"_s
                .arg(element)));
        return QPointF(place.at(0).toDouble(), place.at(1).toDouble()).toPoint();
    }
    void clickPage(const QString &element)
    {
        ASSERT_TRUE(becomes(u"Boolean(%1) && (%1).getBoundingClientRect().width > 0"_s.arg(element)))
            << qPrintable(element);
        test::clickAt(test::ViewerTest::page(viewer()), placeOf(element));
    }
    /// The tools of a line stand under the pointer.
    void clickTool(int line, const QString &tool)
    {
        QWidget *page = test::ViewerTest::page(viewer());
        const QString row = u"state.lines[%1].parts.group"_s.arg(line);
        QTest::mouseMove(viewer()->windowHandle(), page->mapTo(viewer(), placeOf(row)));
        ASSERT_TRUE(becomes(row + u".contains(tools)"_s));
        clickPage(u"tools.querySelector('#%1')"_s.arg(tool));
    }
    void answerMenu(const QString &name)
    {
        ASSERT_TRUE(becomes(
            u"document.getElementById('speaker-menu').open && document.activeElement.id === 'name'"_s));
        test::type(name);
        ASSERT_TRUE(becomes(u"document.getElementById('name').value === '%1'"_s.arg(name)));
        press(Qt::Key_Return);
    }
    bool editorStandsOn(int line, int caret) const
    {
        return becomes(
            u"state.editor !== null && !state.editor.busy && state.editor.line === state.lines[%1] && "
            "document.activeElement === area && area.selectionStart === %2"_s.arg(line)
                .arg(caret));
    }
    /// The files come to hold these lines, and the page shows them too.
    bool hold(const QList<Line> &lines) const
    {
        return waitFor([&] { return linesIn(kept().value("segments"_L1).toArray()) == lines; }) &&
               waitFor([&] { return shownLines() == lines; });
    }

    // The list

    PillButton *sheetButton(int index) const
    {
        return sheet()->findChild<PillButton *>(u"sheetButton%1"_s.arg(index));
    }
    void answerSheet(int button)
    {
        ASSERT_TRUE(waitFor([this] { return sheet() != nullptr; }));
        bringToFront(sheet());
        click(sheetButton(button));
        ASSERT_TRUE(sheetCloses());
        activate();
    }
    void choose(const QString &action)
    {
        click(row(id())->title(), Qt::RightButton);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        auto *item = menu->findChild<QAction *>(action);
        ASSERT_TRUE(item && item->isEnabled()) << qPrintable(action);
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
    }

    // The steps of the road

    void transcribe();
    void openPage();
    void nameSpeakers();
    void splitAndJoin();
    void editLine();
    void compareFiles();
    void saveAs(int form, const QString &name);
    void saveInThreeForms();
    void copy();
    void rename();
    void hideAndShow();
    void throwAway();

    QString m_callDir;
    QList<Line> m_lines; ///< as they must be
    QByteArray m_clean;  ///< the clean text as it must be
};

void Reading::transcribe()
{
    test::Drag drag(QStringList{QStringLiteral(TUPPI_SOURCE "/samples/interview.m4a")});
    ASSERT_TRUE(drag.enter(dropArea()) && drag.drop(dropArea()));
    ASSERT_NE(panel(), nullptr);
    bringToFront(panel());
    click(startButton());
    ASSERT_TRUE(panelCloses());
    const auto isEnded = [this] {
        const QString status = only().value("status"_L1).toString();
        return status == u"ready" || status == u"failed";
    };
    ASSERT_TRUE(waitLong(isEnded));
    ASSERT_EQ(only().value("status"_L1).toString(), u"ready"_s)
        << qPrintable(only().value("error"_L1).toString());
    m_callDir = callDir();
    m_lines = linesIn(kept().value("segments"_L1).toArray());
    m_clean = technical(u"transcript.txt"_s);
    ASSERT_GT(m_lines.size(), 6);
    ASSERT_FALSE(m_clean.isEmpty());
}

void Reading::openPage()
{
    activate();
    ASSERT_TRUE(waitFor([this] { return rowButton(id(), u"openRowViewer"_s) != nullptr; }));
    click(rowButton(id(), u"openRowViewer"_s));
    ASSERT_TRUE(waitFor([this] { return viewer() != nullptr; }));
    bringToFront(viewer());
    constexpr int soon = 200; // a page that is being loaded loses the question
    ASSERT_TRUE(waitFor([this] {
        return test::ViewerTest::ask(viewer(), u"document.readyState"_s, soon) == "\"complete\"";
    }));
    EXPECT_EQ(ask(u"state.tab"_s), "\"transcript\"");
    EXPECT_EQ(shownLines(), m_lines);
}

void Reading::nameSpeakers()
{
    ASSERT_NO_FATAL_FAILURE(clickTool(0, u"set-speaker"_s));
    ASSERT_NO_FATAL_FAILURE(answerMenu(u"Speaker 1"_s));
    m_lines[0].speaker = u"Speaker 1"_s;
    ASSERT_TRUE(hold(m_lines));
    ASSERT_NO_FATAL_FAILURE(clickTool(2, u"set-speaker"_s)); // by the name that is known now
    ASSERT_NO_FATAL_FAILURE(clickPage(u"document.querySelector('#names button')"_s));
    m_lines[2].speaker = u"Speaker 1"_s;
    ASSERT_TRUE(hold(m_lines));
    ASSERT_NO_FATAL_FAILURE(clickPage(u"state.lines[0].parts.speaker"_s)); // a name itself renames everywhere
    ASSERT_NO_FATAL_FAILURE(answerMenu(u"Anna"_s));
    m_lines[0].speaker = m_lines[2].speaker = u"Anna"_s;
    ASSERT_TRUE(hold(m_lines));
    EXPECT_TRUE(becomes(u"document.getElementById('notice-text').textContent === 'Renamed in 2 lines'"_s));
}

void Reading::splitAndJoin()
{
    constexpr int line = 2;
    const QString whole = m_lines[line].text;
    const QString first = whole.section(u' ', 0, 1);
    const QString rest = whole.section(u' ', 2);
    ASSERT_FALSE(rest.isEmpty()) << qPrintable(whole);
    ASSERT_NO_FATAL_FAILURE(clickTool(line, u"edit-line"_s));
    ASSERT_TRUE(editorStandsOn(line, int(whole.size())));
    press(Qt::Key_Home, Qt::ControlModifier);
    for (int step = 0; step <= first.size(); ++step)
        press(Qt::Key_Right);
    ASSERT_TRUE(editorStandsOn(line, int(first.size()) + 1));
    QList<Line> split = m_lines;
    split[line].text = first;
    split.insert(line + 1, {m_lines[line].speaker, rest});

    press(Qt::Key_Return);
    ASSERT_TRUE(hold(split));
    ASSERT_TRUE(editorStandsOn(line + 1, 0));
    press(Qt::Key_Backspace);
    ASSERT_TRUE(hold(m_lines));
    ASSERT_TRUE(editorStandsOn(line, int(first.size()) + 1));
    press(Qt::Key_Return);
    ASSERT_TRUE(hold(split));
    ASSERT_TRUE(editorStandsOn(line + 1, 0));
    press(Qt::Key_Escape);
    ASSERT_TRUE(becomes(u"state.editor === null"_s));
    EXPECT_EQ(technical(u"transcript.txt"_s), m_clean) << "the same words";
    m_lines = split;
}

void Reading::editLine()
{
    // A word that stands once in everything that was said: then it is known what the clean text must become.
    const QString clean = QString::fromUtf8(m_clean);
    int line = -1;
    QString word;
    for (int index = 0; index < 5 && line < 0; ++index) {
        const QStringList words = m_lines[index].text.split(u' ');
        for (const QString &candidate : words.mid(1)) {
            if (candidate.size() > 3 && clean.count(candidate, Qt::CaseInsensitive) == 1 &&
                clean.contains(candidate)) {
                line = index;
                word = candidate;
            }
        }
    }
    ASSERT_GE(line, 0) << qPrintable(clean);
    m_lines[line].text.replace(word, u"quince"_s);
    m_clean = QString(clean).replace(word, u"quince"_s).toUtf8();
    ASSERT_NO_FATAL_FAILURE(clickTool(line, u"edit-line"_s));
    ASSERT_TRUE(becomes(u"state.editor !== null && document.activeElement === area"_s));
    press(Qt::Key_A, Qt::ControlModifier);
    test::type(m_lines[line].text);
    ASSERT_TRUE(becomes(u"area.value === '%1'"_s.arg(QString(m_lines[line].text).replace(u'\'', u"\\'"_s))));
    press(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(hold(m_lines));
    EXPECT_TRUE(becomes(
        u"document.getElementById('notice-text').textContent === 'Saved · also fixed in the clean text'"_s));
    EXPECT_EQ(technical(u"transcript.txt"_s), m_clean);
}

void Reading::compareFiles()
{
    const QJsonArray segments = kept().value("segments"_L1).toArray();
    QString transcript;
    QStringList words;
    for (const QJsonValue &segment : segments) {
        const QString speaker = segment["speaker"_L1].toString();
        transcript += u"[%1] "_s.arg(clock(segment["start"_L1].toDouble())) +
                      (speaker.isEmpty() ? QString() : speaker + u": "_s) + segment["text"_L1].toString() +
                      u'\n';
        for (const QJsonValue &word : segment["words"_L1].toArray())
            words.append(word["word"_L1].toString());
        EXPECT_LE(segment["start"_L1].toDouble(), segment["end"_L1].toDouble());
    }
    QStringList texts;
    for (const Line &line : m_lines)
        texts.append(line.text);
    EXPECT_EQ(linesIn(segments), m_lines);
    EXPECT_EQ(words.join(u' '), texts.join(u' '));
    EXPECT_EQ(QString::fromUtf8(inCallDir(u"Transcript.txt"_s)), transcript);
    EXPECT_EQ(technical(u"transcript.txt"_s), m_clean);
    EXPECT_EQ(spoken(technical(u"subtitles.srt"_s)), texts.join(u' '));
    EXPECT_EQ(spoken(technical(u"subtitles.vtt"_s)).replace(u"&#39;"_s, u"'"_s), texts.join(u' '));
    EXPECT_TRUE(technical(u"subtitles.vtt"_s).contains("<v Anna>"));
    const QByteArray summary = inCallDir(u"Summary.md"_s);
    EXPECT_TRUE(summary.endsWith("\n## Full text\n\n" + m_clean));
    EXPECT_TRUE(summary.contains("\nspeakers: [\"Anna\"]\n"));
    const QJsonObject page = pageData();
    EXPECT_EQ(linesIn(page.value("segments"_L1).toArray()), m_lines);
    EXPECT_EQ(page.value("speakers"_L1).toArray(), QJsonArray{u"Anna"_s});
    EXPECT_EQ(page.value("title"_L1), kept().value("title"_L1));
}

void Reading::saveAs(int form, const QString &name)
{
    bringToFront(viewer());
    click(viewer()->findChild<QWidget *>(u"saveWindowText"_s));
    QPointer<QFileDialog> dialog = viewer()->findChild<QFileDialog *>(u"saveText"_s);
    ASSERT_TRUE(dialog);
    bringToFront(dialog);
    ASSERT_TRUE(test::tabTo(u"fileTypeCombo"_s));
    press(Qt::Key_Home);
    for (int step = 0; step < form; ++step)
        press(Qt::Key_Down);
    EXPECT_EQ(dialog->findChild<QComboBox *>(u"fileTypeCombo"_s)->currentIndex(), form);
    ASSERT_TRUE(test::tabTo(u"fileNameEdit"_s));
    // At once, and not key by key: the dialog's own suggestions are no part of the road.
    qobject_cast<QLineEdit *>(QApplication::focusWidget())->setText(name);
    press(Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return !dialog; }));
}

void Reading::saveInThreeForms()
{
    const QByteArray summary = inCallDir(u"Summary.md"_s);
    const QByteArray texts[]{inCallDir(u"Transcript.txt"_s), m_clean,
                             summary.mid(summary.indexOf("\n---\n", 4) + 5)};
    for (int form : {0, 1, 2}) {
        const QString name = u"form %1.txt"_s.arg(form);
        ASSERT_NO_FATAL_FAILURE(saveAs(form, name));
        EXPECT_TRUE(waitFor([&] { return summaryLabel()->text() == u"Saved "_s + name; }));
        EXPECT_EQ(readFile(documents() + u'/' + name), texts[form]);
    }
    EXPECT_EQ(sheet(), nullptr);
}

void Reading::copy()
{
    activate();
    click(rowButton(id(), u"copyRowText"_s));
    EXPECT_TRUE(waitFor([this] { return summary() == u"Text copied — paste it anywhere with ⌘V"_s; }));
    const auto clipboard = [] {
        QProcess reader;
        reader.start(u"xclip"_s, {u"-selection"_s, u"clipboard"_s, u"-out"_s});
        return waitFor([&] { return reader.state() == QProcess::NotRunning; }) ? reader.readAllStandardOutput() : QByteArray();
    };
    EXPECT_TRUE(waitFor([&] { return clipboard() == m_clean; })) << clipboard().constData();
}

void Reading::rename()
{
    choose(u"renameRow"_s);
    ASSERT_TRUE(waitFor([this] { return sheet() != nullptr; }));
    bringToFront(sheet());
    test::type(u"Talk with Anna"_s);
    press(Qt::Key_Return);
    ASSERT_TRUE(sheetCloses());
    ASSERT_TRUE(waitFor([this] { return only().value("title"_L1) == u"Talk with Anna"_s; }));
    EXPECT_TRUE(waitFor([this] { return viewer() == nullptr; })) << "a page under the old name is closed";
    EXPECT_EQ(callDir(), m_callDir);
    EXPECT_EQ(kept().value("title"_L1), u"Talk with Anna"_s);
    EXPECT_TRUE(inCallDir(u"Summary.md"_s).contains("\n# Talk with Anna\n"));
    compareFiles();
    openPage();
    EXPECT_EQ(viewer()->windowTitle(), u"Talk with Anna"_s);
    EXPECT_EQ(ask(u"document.getElementById('title').textContent"_s), "\"Talk with Anna\"");
}

void Reading::hideAndShow()
{
    activate();
    click(rowButton(id(), u"removeRow"_s));
    answerSheet(0);
    ASSERT_TRUE(isEmptyList());
    EXPECT_TRUE(isEmptyStateShown());
    EXPECT_TRUE(QFileInfo::exists(m_callDir + u"/Transcript.txt"_s));
    window()->findChild<QAction *>(u"showHidden"_s)->trigger();
    ASSERT_TRUE(waitFor([this] { return callDir() == m_callDir; }));
}

void Reading::throwAway()
{
    activate();
    ASSERT_TRUE(waitFor([this] { return rowButton(id(), u"removeRow"_s) != nullptr; }));
    click(rowButton(id(), u"removeRow"_s));
    answerSheet(1);
    ASSERT_TRUE(isEmptyList());
    EXPECT_EQ(viewer(), nullptr);
    EXPECT_FALSE(QFileInfo::exists(m_callDir));
    const QString trashed =
        m_engine.home() + u"/.local/share/Trash/files/"_s + QFileInfo(m_callDir).fileName();
    EXPECT_EQ(readFile(trashed + u"/Technical files/transcript.txt"_s), m_clean);
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(Reading, FromARecordingToTheTrash)
{
    ASSERT_NO_FATAL_FAILURE(openWindow());
    ASSERT_NO_FATAL_FAILURE(transcribe());
    ASSERT_NO_FATAL_FAILURE(openPage());
    ASSERT_NO_FATAL_FAILURE(nameSpeakers());
    ASSERT_NO_FATAL_FAILURE(splitAndJoin());
    ASSERT_NO_FATAL_FAILURE(editLine());
    ASSERT_NO_FATAL_FAILURE(compareFiles());
    ASSERT_NO_FATAL_FAILURE(saveInThreeForms());
    ASSERT_NO_FATAL_FAILURE(copy());
    ASSERT_NO_FATAL_FAILURE(rename());
    ASSERT_NO_FATAL_FAILURE(hideAndShow());
    ASSERT_NO_FATAL_FAILURE(throwAway());
    EXPECT_TRUE(m_failures.isEmpty());
}

} // namespace

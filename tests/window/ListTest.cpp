// The transcript list under many rows, reloads, keyboard and mouse.

#include "window/WindowTest.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::click;
using test::clickAt;
using test::focusName;
using test::job;
using test::press;
using test::readyJobs;
using test::tabTo;
using test::waitFor;

namespace {

class List : public test::WindowTest
{
protected:
    void openWith(const QList<QJsonObject> &jobs)
    {
        m_engine.answerHistory(test::historyOf(jobs));
        ASSERT_NO_FATAL_FAILURE(openWindow());
        QObject::connect(list(), &TranscriptList::openRequested, list(),
                         [this](const QString &key) { m_opened.append(key); });
        QObject::connect(list(), &TranscriptList::removeRequested, list(),
                         [this](const QString &key) { m_removed.append(key); });
    }
    int page() const { return list()->viewport()->height() / Metrics::rowHeight; }
    QScrollBar *bar() const { return list()->verticalScrollBar(); }
    /// The selected row is known as selected, drawn so, alone, and wholly in sight.
    void expectSelected(int index)
    {
        EXPECT_EQ(list()->selectedIndex(), index);
        for (const RowView *view : list()->viewport()->findChildren<RowView *>()) {
            EXPECT_EQ(view->isSelected(), view->isVisible() && view == list()->viewAt(index));
        }
        const RowView *view = list()->viewAt(index);
        ASSERT_NE(view, nullptr);
        EXPECT_TRUE(list()->viewport()->rect().contains(view->geometry()));
    }
    /// Every row in sight is drawn at its place, and no other view is to be seen.
    void expectRowsInSight()
    {
        const auto [first, last] = list()->rowsInSight();
        int visible = 0;
        for (const RowView *view : list()->viewport()->findChildren<RowView *>())
            visible += view->isVisible();
        EXPECT_EQ(visible, last - first + 1);
        for (int index = first; index <= last; ++index) {
            const RowView *view = list()->viewAt(index);
            ASSERT_NE(view, nullptr) << index;
            EXPECT_EQ(view->look().key, list()->content().keyAt(index));
            EXPECT_EQ(view->y(), index * Metrics::rowHeight - bar()->value());
            EXPECT_EQ(view->width(), list()->viewport()->width());
        }
    }
    QStringList rowsThatTabVisits();

    QStringList m_opened;
    QStringList m_removed;
};

TEST_F(List, WidgetsExistOnlyForTheRowsInSight)
{
    openWith(readyJobs(10'000));
    const int most = page() + 2; // one in part at either end
    EXPECT_LE(rowViews(), most);
    expectRowsInSight();
    const auto everywhere = [&] {
        for (int value = 0; value < bar()->maximum(); value += bar()->maximum() / 50)
            bar()->setValue(value);
        bar()->setValue(bar()->maximum());
        expectRowsInSight();
        EXPECT_NE(row(u"job-9999"_s), nullptr);
        bar()->setValue(0);
        expectRowsInSight();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    everywhere();
    EXPECT_LE(rowViews(), most);
    const qsizetype widgets = QApplication::allWidgets().size();
    everywhere();
    EXPECT_LE(rowViews(), most);
    EXPECT_EQ(QApplication::allWidgets().size(), widgets);

    window()->resize(window()->width(), window()->height() + 3 * Metrics::rowHeight);
    ASSERT_TRUE(waitFor([&] { return page() >= most; }));
    expectRowsInSight();
    show(readyJobs(2));
    expectRowsInSight();
    EXPECT_EQ(bar()->maximum(), 0);
}

TEST_F(List, RowsOfOneKeyLeaveNoViewBehind)
{
    const QList<QJsonObject> twice{job(u"a"_s, u"A"_s, u"ready"_s), job(u"a"_s, u"A"_s, u"ready"_s),
                                   job(u"b"_s, u"B"_s, u"ready"_s)};
    openWith(twice);
    expectRowsInSight();
    show(twice + QList{job(u"c"_s, u"C"_s, u"ready"_s)});
    expectRowsInSight();
    show({job(u"b"_s, u"B"_s, u"ready"_s)});
    expectRowsInSight();
}

TEST_F(List, ModelsThatComeAfterTheRowsAreNamedInThem)
{
    m_engine.answer(u"models"_s, test::Answer{R"({"custom":[{"id":"m1","name":"Mine"}]})"}.heldAt("models"));
    QJsonObject ready = job(u"a"_s, u"A"_s, u"ready"_s);
    ready.insert(u"engine_choice"_s, u"custom:m1"_s);
    openWith({ready});
    ASSERT_TRUE(row(u"a"_s)->look().detail.endsWith(u"custom model"_s)) << qPrintable(row(u"a"_s)->look().detail);
    m_engine.openGate("models");
    EXPECT_TRUE(waitFor([&] { return row(u"a"_s)->look().detail.endsWith(u"Mine"_s); }));
}

TEST_F(List, SelectionFollowsItsRow)
{
    openWith(
        {job(u"a"_s, u"A"_s, u"ready"_s), job(u"b"_s, u"B"_s, u"ready"_s), job(u"c"_s, u"C"_s, u"ready"_s)});
    click(row(u"b"_s)->title());
    expectSelected(1);
    show({job(u"x"_s, u"X"_s, u"transcribing"_s), job(u"a"_s, u"A"_s, u"ready"_s),
          job(u"b"_s, u"B2"_s, u"ready"_s)});
    expectSelected(2);
    EXPECT_EQ(list()->selectedKey(), u"b"_s);
    show({job(u"b"_s, u"B2"_s, u"ready"_s)});
    expectSelected(0);
    show({job(u"a"_s, u"A"_s, u"ready"_s)});
    EXPECT_EQ(list()->selectedIndex(), -1);
    EXPECT_FALSE(row(u"a"_s)->isSelected());
    show({job(u"b"_s, u"B"_s, u"ready"_s)});
    EXPECT_EQ(list()->selectedIndex(), -1) << "gone is gone";
}

TEST_F(List, AWaitingFileThatStartsLosesTheSelection)
{
    m_engine.answer(u"process"_s, test::Answer{}.heldAt("taken"));
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s)});
    const QString file = m_engine.recording(u"talk.wav"_s);
    m_app->enqueue({file}, m_choices);
    click(row(u"wait:"_s + file)->title());
    expectSelected(0);
    m_engine.answerHistory("[]");
    poll();
    ASSERT_TRUE(waitFor([this] { return row(u"starting"_s) != nullptr; }));
    EXPECT_EQ(list()->selectedIndex(), -1);
    m_engine.openGate("taken");
}

TEST_F(List, KeyboardStaysInARowThatAPollMoves)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s), job(u"b"_s, u"B"_s, u"ready"_s),
              job(u"c"_s, u"C"_s, u"ready"_s)});
    QPushButton *copy = rowButton(u"c"_s, u"copyRowText"_s);
    copy->setFocus(Qt::TabFocusReason);
    show({job(u"a"_s, u"A"_s, u"analyzing"_s), job(u"b"_s, u"B"_s, u"ready"_s),
          job(u"c"_s, u"C"_s, u"ready"_s)});
    EXPECT_EQ(QApplication::focusWidget(), copy);
    show({job(u"c"_s, u"C"_s, u"ready"_s), job(u"b"_s, u"B"_s, u"ready"_s)});
    EXPECT_EQ(QApplication::focusWidget(), copy);
    EXPECT_EQ(rowButton(u"c"_s, u"copyRowText"_s), copy);
    show({job(u"b"_s, u"B"_s, u"ready"_s)});
    EXPECT_EQ(focusName(), u"table"_s) << "with the row gone the keyboard stays in the list";
}

TEST_F(List, KeyboardStaysInTheListWhenItsRowScrollsAway)
{
    openWith(readyJobs(100));
    rowButton(u"job-0"_s, u"openRowViewer"_s)->setFocus(Qt::TabFocusReason);
    bar()->setValue(bar()->maximum());
    EXPECT_EQ(focusName(), u"table"_s);
}

TEST_F(List, ButtonsThatVanishUnderTheKeyboardHandItToNoOther)
{
    openWith({job(u"a"_s, u"A"_s, u"cleaning"_s), job(u"b"_s, u"B"_s, u"ready"_s)});
    rowButton(u"a"_s, u"cancelRow"_s)->setFocus(Qt::TabFocusReason);
    show({job(u"a"_s, u"A"_s, u"failed"_s), job(u"b"_s, u"B"_s, u"ready"_s)});
    EXPECT_EQ(focusName(), u"table"_s);
}

TEST_F(List, ReloadKeepsTheScrollPlace)
{
    QList<QJsonObject> jobs = readyJobs(500);
    openWith(jobs);
    bar()->setValue(12'345);
    jobs[3] = job(u"job-3"_s, u"Renamed"_s, u"ready"_s);
    jobs[144] = job(u"job-144"_s, u"Renamed too"_s, u"ready"_s);
    show(jobs);
    EXPECT_EQ(bar()->value(), 12'345);
    EXPECT_EQ(shown(u"job-144"_s).title, u"Renamed too"_s);
    expectRowsInSight();
    show(jobs.first(20));
    EXPECT_EQ(bar()->value(), bar()->maximum()) << "a shorter list is shown to its end";
    expectRowsInSight();
}

TEST_F(List, AListThatIsEmptiedWhileScrolledServesEachRowAnew)
{
    openWith(readyJobs(20));
    bar()->setValue(bar()->maximum());
    show({});
    show(readyJobs(20));
    expectRowsInSight();
    bar()->setValue(Metrics::rowHeight / 2); // one row more is in sight
    expectRowsInSight();
}

TEST_F(List, ARowThatStaysInAShorterListKeepsItsView)
{
    const QList<QJsonObject> jobs = readyJobs(20);
    openWith(jobs);
    bar()->setValue(bar()->maximum());
    const RowView *last = row(u"job-19"_s);
    ASSERT_NE(last, nullptr);
    show(jobs.sliced(1));
    EXPECT_EQ(row(u"job-19"_s), last);
    expectRowsInSight();
}

TEST_F(List, ReloadKeepsTheMascotsOfRowsThatStay)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s), job(u"b"_s, u"B"_s, u"ready"_s)});
    const MascotView *moving = row(u"a"_s)->icon();
    show({job(u"a"_s, u"A"_s, u"transcribing"_s), job(u"b"_s, u"B2"_s, u"ready"_s),
          job(u"c"_s, u"C"_s, u"ready"_s)});
    EXPECT_EQ(row(u"a"_s)->icon(), moving);
    EXPECT_TRUE(moving->isVisible());
}

TEST_F(List, ArrowsPagesHomeAndEnd)
{
    openWith(readyJobs(100));
    tabTo(u"table"_s);
    list()->selectRow(-1);
    struct
    {
        Qt::Key key;
        int index;
    } const steps[]{{Qt::Key_Down, 0},        {Qt::Key_Down, 1},          {Qt::Key_Up, 0},
                    {Qt::Key_Up, 0},          {Qt::Key_PageDown, page()}, {Qt::Key_PageDown, 2 * page()},
                    {Qt::Key_PageUp, page()}, {Qt::Key_End, 99},          {Qt::Key_Down, 99},
                    {Qt::Key_PageDown, 99},   {Qt::Key_Up, 98},           {Qt::Key_Home, 0},
                    {Qt::Key_PageUp, 0}};
    for (const auto &step : steps) {
        press(step.key);
        expectSelected(step.index);
        expectRowsInSight();
    }
    list()->selectRow(-1);
    press(Qt::Key_Up);
    expectSelected(99);
}

TEST_F(List, KeysOnAnEmptyListDoNothing)
{
    openWith({job(u"a"_s, u"A"_s, u"ready"_s)});
    tabTo(u"table"_s);
    list()->selectRow(-1);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Delete, Qt::Key_Backspace})
        press(key);
    show({});
    list()->setFocus();
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_End, Qt::Key_Return, Qt::Key_Delete, Qt::Key_A})
        QTest::keyClick(list(), key);
    EXPECT_EQ(m_opened, QStringList());
    EXPECT_EQ(m_removed, QStringList());
    EXPECT_EQ(list()->selectedIndex(), -1);
}

TEST_F(List, ReturnOpensAndDeleteRemovesTheSelectedRow)
{
    openWith(readyJobs(3));
    tabTo(u"table"_s);
    list()->selectRow(1);
    press(Qt::Key_Return);
    press(Qt::Key_Enter);
    press(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(m_opened, (QStringList{u"job-1"_s, u"job-1"_s, u"job-1"_s}));
    EXPECT_EQ(m_removed, QStringList());
    list()->selectRow(2);
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace}) {
        press(key);
        ASSERT_NE(sheet(), nullptr) << "it asks first";
        sheet()->answer(sheet()->text().escapeButton);
        ASSERT_TRUE(sheetCloses());
        activate();
    }
    EXPECT_EQ(m_removed, (QStringList{u"job-2"_s, u"job-2"_s}));
    EXPECT_EQ(m_opened.size(), 3);
}

TEST_F(List, DoubleClickOpens)
{
    openWith(readyJobs(3));
    RowView *view = row(u"job-1"_s);
    QTest::mouseDClick(window()->windowHandle(), Qt::LeftButton, {},
                       view->mapTo(window(), view->title()->geometry().center()));
    EXPECT_EQ(m_opened, QStringList{u"job-1"_s});
    expectSelected(1);
}

TEST_F(List, TypingSelectsByTitle)
{
    openWith({job(u"0"_s, u"Alpha"_s, u"ready"_s), job(u"1"_s, u"Beta"_s, u"ready"_s),
              job(u"2"_s, u"bravo two"_s, u"ready"_s), job(u"3"_s, u"Charlie"_s, u"ready"_s),
              job(u"4"_s, u"bravo one"_s, u"ready"_s)});
    tabTo(u"table"_s);
    list()->selectRow(0);
    constexpr int forEver = 1'000'000'000;
    const int interval = QApplication::keyboardInputInterval();
    QApplication::setKeyboardInputInterval(forEver);
    test::type(u"b"_s);
    expectSelected(1);
    test::type(u"ra"_s);
    expectSelected(2);
    test::type(u"vo o"_s);
    expectSelected(4);
    test::type(u"x"_s);
    expectSelected(4);

    QApplication::setKeyboardInputInterval(0);
    for (const int next : {1, 2, 4, 1}) { // round the end
        QElapsedTimer sinceKey;
        sinceKey.start();
        ASSERT_TRUE(waitFor([&] { return sinceKey.elapsed() > 1; })); // a new word by the clock
        test::type(u"b"_s);
        expectSelected(next);
    }
    QApplication::setKeyboardInputInterval(interval);
}

TEST_F(List, AClickOnEmptyGroundClearsTheSelection)
{
    openWith(readyJobs(2));
    click(row(u"job-0"_s)->title());
    expectSelected(0);
    clickAt(list()->viewport(), {40, 2 * Metrics::rowHeight + 20}, Qt::RightButton);
    if (QWidget *menu = QApplication::activePopupWidget())
        menu->close();
    expectSelected(0);
    clickAt(list()->viewport(), {40, 2 * Metrics::rowHeight + 20});
    EXPECT_EQ(list()->selectedIndex(), -1);
    EXPECT_FALSE(row(u"job-0"_s)->isSelected());
    EXPECT_EQ(focusName(), u"table"_s);
}

TEST_F(List, AClickOnAButtonLeavesSelectionAndKeyboardAlone)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s), job(u"b"_s, u"B"_s, u"ready"_s)});
    click(row(u"b"_s)->title());
    click(rowButton(u"a"_s, u"pauseRow"_s));
    expectSelected(1);
    EXPECT_EQ(focusName(), u"table"_s);
    ASSERT_TRUE(waitFor([this] { return m_engine.count(u"pause"_s) == 1; }));
}

QStringList List::rowsThatTabVisits()
{
    QStringList visited;
    const int buttons = 5 * (page() + 2);
    for (int step = 0; step < buttons; ++step) {
        press(Qt::Key_Tab);
        const QWidget *focus = QApplication::focusWidget();
        if (!list()->viewport()->isAncestorOf(focus))
            break;
        visited.append(qobject_cast<RowView *>(focus->parentWidget())->look().key + u'.' +
                       focus->objectName());
    }
    return visited;
}

TEST_F(List, TabVisitsTheButtonsInReadingOrder)
{
    openWith(readyJobs(200));
    const auto inReadingOrder = [this] {
        QStringList order;
        const auto [first, last] = list()->rowsInSight();
        for (int index = first; index <= last; ++index) {
            for (const QPushButton *button : list()->viewAt(index)->buttons())
                order.append(list()->viewAt(index)->look().key + u'.' + button->objectName());
        }
        return order;
    };
    tabTo(u"table"_s);
    list()->selectRow(-1);
    EXPECT_EQ(rowsThatTabVisits(), inReadingOrder());
    // Scrolled by a row, the view of the first serves the last.
    for (int scroll = 1; scroll <= 3; ++scroll) {
        list()->setFocus();
        bar()->setValue(scroll * Metrics::rowHeight);
        EXPECT_EQ(rowsThatTabVisits(), inReadingOrder());
    }
    QList<QJsonObject> jobs = readyJobs(200);
    jobs.insert(4, job(u"new"_s, u"New"_s, u"failed"_s));
    show(jobs);
    list()->setFocus();
    EXPECT_EQ(rowsThatTabVisits(), inReadingOrder());
}

TEST_F(List, TabGoesFromTheSelectedRowToItsButtons)
{
    openWith(readyJobs(50));
    tabTo(u"table"_s);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    const QString key = list()->selectedKey();
    press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), rowButton(key, u"openRowViewer"_s));
}

class RightToLeft : public List
{
protected:
    void SetUp() override { QApplication::setLayoutDirection(Qt::RightToLeft); }
    void TearDown() override
    {
        List::TearDown();
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }
    static int x(const QWidget *widget, const QWidget *in)
    {
        return widget->mapTo(in, widget->rect().center()).x();
    }
};

TEST_F(RightToLeft, EverythingIsMirrored)
{
    openWith({job(u"a"_s, u"A"_s, u"transcribing"_s), job(u"b"_s, u"B"_s, u"ready"_s)});
    const RowView *view = row(u"a"_s);
    EXPECT_EQ(view->icon()->geometry().right(), view->width() - 1 - Metrics::rowMargin);
    EXPECT_LT(view->title()->geometry().right(), view->icon()->x());
    EXPECT_LT(view->bar()->geometry().right(), view->icon()->x());
    const QList<QPushButton *> buttons = view->buttons();
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_EQ(buttons.last()->x(), Metrics::rowMargin);
    EXPECT_GT(buttons.first()->x(), buttons.last()->x());

    QStringList fromTheRight{u"addButton"_s,      u"statusLabel"_s, u"soundButton"_s,
                             u"settingsButton"_s, u"clearButton"_s, u"folderButton"_s};
    QStringList found = fromTheRight;
    std::sort(found.begin(), found.end(), [this](const QString &one, const QString &two) {
        return x(window()->findChild<QWidget *>(one), window()) >
               x(window()->findChild<QWidget *>(two), window());
    });
    EXPECT_EQ(found, fromTheRight);
}

} // namespace

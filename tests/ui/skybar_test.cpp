#include "ui/Colours.h"
#include "ui/MotionPolicy.h"
#include "ui/SkyBar.h"
#include "ui/SweepClock.h"

#include "uitest.h"

#include <QAbstractEventDispatcher>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace tuppi;

namespace {

struct SkyBarTest : testing::Test
{
    MotionPolicy motion;
    SweepClock clock{motion};

    std::unique_ptr<SkyBar> bar(double value, QWidget *parent = nullptr)
    {
        auto made = std::make_unique<SkyBar>(clock, parent);
        made->setValue(value);
        made->resize(200, 8);
        made->applyLayout();
        return made;
    }
    bool starts()
    {
        return QTest::qWaitFor([this] { return clock.isRunning(); }, test::patience);
    }
    bool stops()
    {
        return QTest::qWaitFor([this] { return !clock.isRunning(); }, test::patience);
    }
};

/// The timers that an object and those below it have running, QTimers and others.
qsizetype timersOf(QObject &object)
{
    const auto *dispatcher = QAbstractEventDispatcher::instance();
    qsizetype timers = dispatcher->registeredTimers(&object).size();
    for (QObject *below : object.findChildren<QObject *>())
        timers += dispatcher->registeredTimers(below).size();
    return timers;
}

TEST_F(SkyBarTest, fillsFromTheLeadingEdge)
{
    struct Case
    {
        double value, left, width;
        Qt::LayoutDirection direction;
    };
    for (const Case &c : {Case{0, 0, 0, Qt::LeftToRight}, Case{0.25, 0, 50, Qt::LeftToRight},
                          Case{1, 0, 200, Qt::LeftToRight}, Case{1.2, 0, 200, Qt::LeftToRight},
                          Case{0.25, 150, 50, Qt::RightToLeft}, Case{1.2, 0, 200, Qt::RightToLeft}}) {
        const auto made = bar(c.value);
        made->setLayoutDirection(c.direction);
        EXPECT_FALSE(made->isSweeping());
        EXPECT_EQ(made->fillRect(), QRectF(c.left, 0, c.width, 8)) << c.value;
    }
}

TEST_F(SkyBarTest, drawsTrackAndFill)
{
    const auto made = bar(0.5);
    const QImage picture = pictureOf(*made);
    EXPECT_EQ(picture.height(), 8);
    EXPECT_COLOUR(picture.pixelColor(50, 4), QColor(0, 87, 183));
    EXPECT_COLOUR(picture.pixelColor(150, 4), QColor(221, 232, 247));
    EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0) << "rounded";
    EXPECT_LT(picture.pixelColor(199, 0).alpha(), 128) << "rounded";
    EXPECT_EQ(made->sizeHint().height(), 8);
}

TEST_F(SkyBarTest, nothingDoneDrawsNoFillAndDoesNotSweep)
{
    const auto made = bar(0);
    EXPECT_FALSE(made->isIndeterminate());
    EXPECT_FALSE(made->isSweeping());
    const QImage picture = pictureOf(*made);
    for (int x = 4; x < 196; ++x)
        EXPECT_COLOUR(picture.pixelColor(x, 4), Colours::progressTrack);
}

TEST_F(SkyBarTest, moreThanAllDrawsFull)
{
    const auto made = bar(7.5);
    const QImage picture = pictureOf(*made);
    for (int x = 4; x < 196; ++x)
        EXPECT_COLOUR(picture.pixelColor(x, 4), Colours::accentBlue);
}

TEST_F(SkyBarTest, aValueWaitsForTheNextLayout)
{
    const auto made = bar(-1);
    made->setValue(0.5);
    EXPECT_TRUE(made->isSweeping());
    EXPECT_FALSE(made->isIndeterminate());
    made->applyLayout();
    EXPECT_FALSE(made->isSweeping());

    made->setValue(-2);
    EXPECT_FALSE(made->isSweeping());
    EXPECT_EQ(made->fillRect().width(), 100);
    QEvent request(QEvent::LayoutRequest);
    QCoreApplication::sendEvent(made.get(), &request);
    EXPECT_TRUE(made->isSweeping());
}

TEST_F(SkyBarTest, showingAndResizingAreLayouts)
{
    SkyBar made(clock);
    made.setValue(0.5);
    EXPECT_EQ(made.fillRect().width(), 0);
    showAndWait(made);
    EXPECT_EQ(made.fillRect().width(), made.width() * 0.5);
    made.setValue(1);
    EXPECT_EQ(made.fillRect().width(), made.width() * 0.5);
    made.resize(made.width() + 40, 8);
    EXPECT_EQ(made.fillRect().width(), made.width());
}

TEST_F(SkyBarTest, settingAValueAloneDoesNotRedraw)
{
    const auto made = bar(0.2);
    showAndWait(*made);
    PaintCounter counter(made.get());
    made->update();
    ASSERT_TRUE(QTest::qWaitFor([&] { return counter.count > 0; }, test::patience));
    const int before = counter.count;
    made->setValue(0.9);
    QCoreApplication::processEvents();
    EXPECT_EQ(counter.count, before);
    made->applyLayout();
    EXPECT_TRUE(QTest::qWaitFor([&] { return counter.count > before; }, test::patience));
}

TEST_F(SkyBarTest, theSweepCrossesTheWholeBar)
{
    const QSizeF size(200, 8);
    EXPECT_EQ(SweepRect(size, 0, Qt::LeftToRight), QRectF(-60, 0, 60, 8));
    EXPECT_EQ(SweepRect(size, 0.5, Qt::LeftToRight), QRectF(70, 0, 60, 8));
    EXPECT_EQ(SweepRect(size, 1, Qt::LeftToRight), QRectF(200, 0, 60, 8));
    EXPECT_EQ(SweepRect(size, 0, Qt::RightToLeft), QRectF(200, 0, 60, 8));
    EXPECT_EQ(SweepRect(size, 1, Qt::RightToLeft), QRectF(-60, 0, 60, 8));
}

TEST_F(SkyBarTest, theSweepRunsOnlyWhileInSight)
{
    const auto made = bar(-1);
    EXPECT_FALSE(clock.isRunning());
    pictureOf(*made);
    EXPECT_FALSE(clock.isRunning()) << "a picture of a hidden bar is no sight of it";
    showAndWait(*made);
    EXPECT_TRUE(starts());
    made->hide();
    EXPECT_TRUE(stops());
    made->show();
    EXPECT_TRUE(starts());
    made->showMinimized();
    EXPECT_TRUE(stops());
    made->showNormal();
    EXPECT_TRUE(starts());
    made->setValue(0.5);
    made->applyLayout();
    EXPECT_TRUE(stops());
}

TEST_F(SkyBarTest, aBarScrolledAwayDoesNotKeepItRunning)
{
    QScrollArea area;
    auto *page = new QWidget;
    page->resize(200, 2000);
    auto *made = bar(-1, page).release();
    made->move(0, 10);
    area.setWidget(page);
    area.resize(220, 200);
    showAndWait(area);
    EXPECT_TRUE(starts());
    area.verticalScrollBar()->setValue(1000);
    EXPECT_TRUE(stops());
    area.verticalScrollBar()->setValue(0);
    EXPECT_TRUE(starts());
}

TEST_F(SkyBarTest, aWindowThatComesBackMovesThoughAnotherNeverWentAway)
{
    const auto stays = bar(-1);
    const auto comesBack = bar(-1);
    showAndWait(*stays);
    showAndWait(*comesBack);
    PaintCounter counter(comesBack.get());
    ASSERT_TRUE(QTest::qWaitFor([&] { return counter.count > 2; }, test::patience));
    comesBack->showMinimized();
    PaintCounter meanwhile(stays.get());
    ASSERT_TRUE(QTest::qWaitFor([&] { return meanwhile.count > 2; }, test::patience));
    comesBack->showNormal();
    const int before = counter.count;
    EXPECT_TRUE(QTest::qWaitFor([&] { return counter.count > before + 2; }, test::patience));
}

TEST_F(SkyBarTest, oneClockMovesAllBarsAndEachOnlyWhereItChanges)
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *first = bar(-1).release();
    auto *second = bar(-1).release();
    layout->addWidget(first);
    layout->addWidget(second);
    window.resize(400, 100);
    showAndWait(window);
    PaintCounter countFirst(first);
    PaintCounter countSecond(second);
    PaintCounter countWindow(&window);
    EXPECT_TRUE(QTest::qWaitFor([&] { return countFirst.count > 3 && countSecond.count > 3; }, test::patience));
    EXPECT_TRUE(QTest::qWaitFor([&] { return countFirst.last.boundingRect().width() < first->width(); }, test::patience));
    // What lies behind a bar is painted with it, and no more of the window.
    EXPECT_EQ(countWindow.all - first->geometry() - second->geometry(), QRegion());
    EXPECT_EQ(timersOf(clock), 1);
    EXPECT_EQ(timersOf(*first) + timersOf(*second), 0) << "one timer, not one per bar";
    second->hide();
    EXPECT_TRUE(QTest::qWaitFor([&] { return countFirst.count > 6; }, test::patience));
    EXPECT_TRUE(clock.isRunning());
    delete first;
    EXPECT_TRUE(stops());
}

TEST_F(SkyBarTest, reducedMotionHoldsThePieceInTheMiddle)
{
    const auto made = bar(-1);
    showAndWait(*made);
    EXPECT_TRUE(starts());
    motion.setReducedMotion(true);
    EXPECT_FALSE(clock.isRunning());
    EXPECT_TRUE(made->isSweeping());
    EXPECT_EQ(made->fillRect(), QRectF(made->width() * 0.35, 0, made->width() * 0.3, 8));
    const QImage picture = pictureOf(*made);
    EXPECT_COLOUR(picture.pixelColor(made->width() / 2, 4), Colours::accentBlue);
    EXPECT_COLOUR(picture.pixelColor(made->width() / 10, 4), Colours::progressTrack);
    EXPECT_COLOUR(picture.pixelColor(made->width() * 9 / 10, 4), Colours::progressTrack);
    EXPECT_FALSE(clock.isRunning());
    motion.setReducedMotion(false);
    EXPECT_TRUE(starts());
}

TEST_F(SkyBarTest, isAProgressIndicatorWithAValueWhenThereIsOne)
{
    const auto made = bar(0.25);
    QAccessibleInterface *interface = accessible(made.get());
    ASSERT_TRUE(interface);
    EXPECT_EQ(interface->role(), QAccessible::ProgressBar);
    ASSERT_TRUE(interface->valueInterface());
    EXPECT_EQ(interface->valueInterface()->currentValue(), QVariant(0.25));
    EXPECT_EQ(interface->valueInterface()->minimumValue(), QVariant(0.0));
    EXPECT_EQ(interface->valueInterface()->maximumValue(), QVariant(1.0));
    EXPECT_FALSE(interface->state().busy);
    made->setValue(0);
    ASSERT_TRUE(interface->valueInterface());
    EXPECT_EQ(interface->valueInterface()->currentValue(), QVariant(0.0));
    made->setValue(-1);
    EXPECT_FALSE(interface->valueInterface());
    EXPECT_TRUE(interface->text(QAccessible::Value).isEmpty());
    EXPECT_TRUE(interface->state().busy);
    made->setAccessibleName(u"Listening"_qs);
    EXPECT_EQ(interface->text(QAccessible::Name), u"Listening"_qs);
}

} // namespace

#include "ui/Animation.h"
#include "ui/MascotView.h"
#include "ui/Mascots.h"
#include "ui/MotionPolicy.h"
#include "ui/TuppiCache.h"

#include "uitest.h"

#include <QHBoxLayout>
#include <QScrollArea>
#include <QScrollBar>

using namespace tuppi;

namespace {

// The pictures in data/mascot are plain colours: waiting has stills of 16, 32 and 48 (hexadecimal grey 10,
// 20, 30) and four frames of red, green, blue and yellow; writing plays two frames once; done has no
// animation; the animation of oops is broken.

QColor grey(int level)
{
    return QColor(level, level, level);
}

struct MascotTest : testing::Test
{
    MotionPolicy motion;
    Mascots mascots{motion, QStringLiteral(TUPPI_TEST_DATA) + u"/mascot"_qs};

    bool runs(const QString &pose = u"waiting"_qs)
    {
        return QTest::qWaitFor([&] { return mascots.isRunning(pose); }, test::patience);
    }
    bool rests(const QString &pose = u"waiting"_qs)
    {
        return QTest::qWaitFor([&] { return !mascots.isRunning(pose); }, test::patience);
    }
    static QColor centre(MascotView &view)
    {
        return pictureOf(view).pixelColor(view.width() / 2, view.height() / 2);
    }
};

TEST_F(MascotTest, isEightSeventhsAsWideAsHigh)
{
    EXPECT_EQ(MascotSize(160), QSize(160, 140));
    EXPECT_EQ(MascotSize(64), QSize(64, 56));
    EXPECT_EQ(MascotSize(200), QSize(200, 175));
    EXPECT_EQ(MascotSize(100), QSize(100, 88)) << "87.5 is rounded up";
    const std::unique_ptr<MascotView> view(TuppiView(mascots, u"done"_qs, 64));
    EXPECT_EQ(view->minimumSize(), QSize(64, 56));
    EXPECT_EQ(view->maximumSize(), QSize(64, 56));
}

TEST_F(MascotTest, takesTheStillThatNeedNotBeEnlarged)
{
    const auto shade = [&](int width, double ratio) {
        const QPixmap still = mascots.still(u"waiting"_qs, MascotSize(width), ratio);
        EXPECT_EQ(still.width(), qRound(width * ratio));
        EXPECT_EQ(still.devicePixelRatio(), ratio);
        return still.toImage().pixelColor(still.width() / 2, still.height() / 2);
    };
    EXPECT_COLOUR(shade(64, 1), grey(0x10));
    EXPECT_COLOUR(shade(64, 1.25), grey(0x10));
    EXPECT_COLOUR(shade(64, 2), grey(0x10));
    EXPECT_COLOUR(shade(200, 1), grey(0x20));
    EXPECT_COLOUR(shade(200, 1.25), grey(0x20));
    EXPECT_COLOUR(shade(200, 2), grey(0x30));
    EXPECT_COLOUR(shade(400, 2), grey(0x30));
}

TEST_F(MascotTest, aStillViewNeverMoves)
{
    const std::unique_ptr<MascotView> view(TuppiView(mascots, u"waiting"_qs, 160));
    showAndWait(*view);
    EXPECT_COLOUR(centre(*view), grey(0x10));
    EXPECT_FALSE(mascots.isRunning(u"waiting"_qs));
    EXPECT_TRUE(mascots.findChildren<Animation *>().isEmpty());
}

TEST_F(MascotTest, anAnimatedViewShowsTheFrames)
{
    const std::unique_ptr<MascotView> view(TuppiAnim(mascots, u"waiting"_qs, 160));
    showAndWait(*view);
    for (Qt::GlobalColor colour : {Qt::red, Qt::green, Qt::blue, Qt::yellow, Qt::red}) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return near(centre(*view), QColor(colour)); }, test::patience))
            << QColor(colour).name().toStdString();
    }
}

TEST_F(MascotTest, anAnimationThatPlaysOnceGoesOnAllTheSame)
{
    const std::unique_ptr<MascotView> view(TuppiAnim(mascots, u"writing"_qs, 160));
    showAndWait(*view);
    for (Qt::GlobalColor colour : {Qt::red, Qt::green, Qt::red, Qt::green, Qt::red})
        EXPECT_TRUE(QTest::qWaitFor([&] { return near(centre(*view), QColor(colour)); }, test::patience));
}

TEST_F(MascotTest, poseWithoutAnAnimationFallsBackToItsStill)
{
    const std::unique_ptr<MascotView> done(TuppiAnim(mascots, u"done"_qs, 160));
    const std::unique_ptr<MascotView> broken(TuppiAnim(mascots, u"oops"_qs, 160));
    const std::unique_ptr<MascotView> unknown(TuppiAnim(mascots, u"dancing"_qs, 160));
    for (MascotView *view : {done.get(), broken.get(), unknown.get()})
        showAndWait(*view);
    EXPECT_COLOUR(centre(*done), grey(0x40));
    EXPECT_COLOUR(centre(*broken), grey(0x60));
    EXPECT_EQ(centre(*unknown).alpha(), 0);
    EXPECT_FALSE(mascots.isRunning(u"done"_qs));
    EXPECT_FALSE(mascots.isRunning(u"oops"_qs));
}

TEST_F(MascotTest, allViewsOfAPoseShareOneMovie)
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    QList<MascotView *> views;
    for (int width : {64, 64, 200, 64}) {
        views.append(TuppiAnim(mascots, u"waiting"_qs, width));
        layout->addWidget(views.last());
    }
    showAndWait(window);
    ASSERT_TRUE(runs());
    const QList<Animation *> movies = mascots.findChildren<Animation *>();
    ASSERT_EQ(movies.size(), 1);
    EXPECT_EQ(movies.first()->size().width(), qRound(200 * window.devicePixelRatioF()))
        << "decoded at the largest size in use";
    // Between two turns of the event loop the movie stands still: all show the same frame.
    QSet<QRgb> met;
    EXPECT_TRUE(QTest::qWaitFor([&] {
        const QColor first = centre(*views.first());
        for (MascotView *view : views)
            EXPECT_COLOUR(centre(*view), first);
        met.insert(first.rgb());
        return met.size() == 4;
    }, test::patience));
}

TEST_F(MascotTest, everyViewOfAPoseIsRepainted)
{
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *first = TuppiAnim(mascots, u"waiting"_qs, 64);
    auto *second = TuppiAnim(mascots, u"waiting"_qs, 64);
    auto *still = TuppiView(mascots, u"waiting"_qs, 64);
    for (MascotView *view : {first, second, still})
        layout->addWidget(view);
    showAndWait(window);
    PaintCounter countFirst(first);
    PaintCounter countSecond(second);
    PaintCounter countStill(still);
    EXPECT_TRUE(QTest::qWaitFor([&] { return countFirst.count > 3 && countSecond.count > 3; }, test::patience));
    EXPECT_EQ(countStill.count, 0);
}

TEST_F(MascotTest, framesAreSharpAtEveryRatio)
{
    for (double ratio : {1.0, 1.25, 2.0}) {
        const QPixmap frame = mascots.frame(u"waiting"_qs, MascotSize(64), ratio);
        EXPECT_EQ(frame.size(), QSize(qRound(64 * ratio), qRound(56 * ratio)));
        EXPECT_EQ(frame.devicePixelRatio(), ratio);
    }
    EXPECT_EQ(mascots.frame(u"waiting"_qs, MascotSize(64), 1.0).size(), QSize(64, 56)) << "and back";
}

TEST_F(MascotTest, movesOnlyWhileAViewIsInSight)
{
    auto *view = TuppiAnim(mascots, u"waiting"_qs, 64);
    const std::unique_ptr<MascotView> owner(view);
    pictureOf(*view);
    EXPECT_FALSE(mascots.isRunning(u"waiting"_qs));
    showAndWait(*view);
    EXPECT_TRUE(runs());
    view->hide();
    EXPECT_TRUE(rests());
    view->show();
    EXPECT_TRUE(runs());
    view->showMinimized();
    EXPECT_TRUE(rests());
    view->showNormal();
    EXPECT_TRUE(runs());
}

TEST_F(MascotTest, restsWhenScrolledAwayAndWhileOneViewIsLeftGoesOn)
{
    QScrollArea area;
    auto *page = new QWidget;
    page->resize(200, 2000);
    auto *top = TuppiAnim(mascots, u"waiting"_qs, 64, page);
    auto *below = TuppiAnim(mascots, u"waiting"_qs, 64, page);
    below->move(0, 60);
    area.setWidget(page);
    area.resize(220, 200);
    showAndWait(area);
    EXPECT_TRUE(runs());
    PaintCounter counter(below);
    delete top;
    EXPECT_TRUE(QTest::qWaitFor([&] { return counter.count > 5; }, test::patience));
    area.verticalScrollBar()->setValue(1000);
    EXPECT_TRUE(rests());
    area.verticalScrollBar()->setValue(0);
    EXPECT_TRUE(runs());
}

TEST_F(MascotTest, reducedMotionStopsEverythingAtOnceAndLetsItGoOnLater)
{
    const std::unique_ptr<MascotView> view(TuppiAnim(mascots, u"waiting"_qs, 160));
    showAndWait(*view);
    EXPECT_TRUE(runs());
    motion.setReducedMotion(true);
    EXPECT_FALSE(mascots.isRunning(u"waiting"_qs));
    EXPECT_FALSE(mascots.animates(u"waiting"_qs));
    EXPECT_COLOUR(centre(*view), grey(0x10));
    EXPECT_FALSE(mascots.isRunning(u"waiting"_qs)) << "painting does not start it again";
    motion.setReducedMotion(false);
    EXPECT_TRUE(runs());
}

TEST_F(MascotTest, isNotThereForAssistiveToolsOrTheMouse)
{
    const std::unique_ptr<MascotView> view(TuppiAnim(mascots, u"waiting"_qs, 64));
    showAndWait(*view);
    EXPECT_TRUE(accessible(view.get())->state().invisible);
    EXPECT_TRUE(accessible(view.get())->text(QAccessible::Name).isEmpty());
    EXPECT_TRUE(view->testAttribute(Qt::WA_TransparentForMouseEvents));
    EXPECT_EQ(view->focusPolicy(), Qt::NoFocus);
}

struct TuppiCacheTest : MascotTest
{
    QWidget shown;
    TuppiCache cache;
    int made = 0;

    MascotView *take(int key, QWidget *parent)
    {
        return cache.lookUp(QString::number(key), parent, [this] {
            ++made;
            return TuppiAnim(mascots, u"waiting"_qs, 64);
        });
    }
};

TEST_F(TuppiCacheTest, givesTheSameViewAgainAndTakesItFromItsPlace)
{
    QWidget elsewhere;
    MascotView *view = take(1, &shown);
    EXPECT_EQ(view->parent(), &shown);
    EXPECT_EQ(take(1, &elsewhere), view);
    EXPECT_EQ(view->parent(), &elsewhere);
    EXPECT_EQ(made, 1);
    EXPECT_NE(take(2, &shown), view);
    EXPECT_EQ(made, 2);
}

TEST_F(TuppiCacheTest, the41stKeyEmptiesItAndThe40thDoesNot)
{
    for (int key = 1; key <= 40; ++key)
        take(key, &shown);
    EXPECT_EQ(cache.entries.size(), 40);
    take(40, &shown);
    EXPECT_EQ(cache.entries.size(), 40);
    EXPECT_EQ(made, 40);
    const QPointer<MascotView> inHand = take(41, &shown);
    EXPECT_EQ(cache.entries.size(), 0);
    EXPECT_TRUE(inHand) << "the view just taken stays in use";
    EXPECT_EQ(shown.findChildren<MascotView *>().size(), 41) << "so do those that rows show";
    take(1, &shown);
    EXPECT_EQ(made, 42);
}

TEST_F(TuppiCacheTest, keepsAReleasedViewUntilItIsEmptied)
{
    QPointer<MascotView> view = take(1, &shown);
    cache.release(view);
    ASSERT_TRUE(view);
    EXPECT_FALSE(view->parent());
    EXPECT_TRUE(view->isHidden());
    cache.empty();
    EXPECT_FALSE(view);
}

TEST_F(TuppiCacheTest, deletesAReleasedViewThatItDoesNotKeep)
{
    QPointer<MascotView> view = take(1, &shown);
    cache.empty();
    ASSERT_TRUE(view);
    cache.release(view);
    QCoreApplication::sendPostedEvents(view, QEvent::DeferredDelete);
    EXPECT_FALSE(view);
}

TEST_F(TuppiCacheTest, survivesTheDeathOfARow)
{
    {
        QWidget row;
        take(1, &row);
    }
    EXPECT_TRUE(take(1, &shown));
    EXPECT_EQ(made, 2);
}

} // namespace

#include "ui/Colours.h"
#include "ui/Labels.h"
#include "ui/MascotView.h"
#include "ui/Mascots.h"
#include "ui/MotionPolicy.h"
#include "ui/RowView.h"
#include "ui/SkyBar.h"
#include "ui/SweepClock.h"
#include "ui/TuppiCache.h"

#include "uitest.h"

#include <QLoggingCategory>
#include <QPushButton>
#include <QSignalSpy>

using namespace tuppi;

namespace {

struct RowViewTest : testing::Test
{
    MotionPolicy motion;
    SweepClock sweep{motion};
    Mascots mascots{motion, QStringLiteral(TUPPI_TEST_DATA) + u"/mascot"_qs};
    TuppiCache cache;
    RowView row{{sweep, mascots, cache}};
    QSignalSpy action{&row, &RowView::action};

    void SetUp() override
    {
        row.resize(748, 86);
        // The data holds no trash or folder to draw.
        QLoggingCategory::setFilterRules(u"tuppi.ui.symbols=false"_qs);
    }
    void TearDown() override { QLoggingCategory::setFilterRules(QString()); }

    static RowLook look(const QString &status, const QString &key = u"1"_qs, double progress = -2,
                        const QString &title = u"Talk"_qs)
    {
        return RowLookFor({{u"id"_qs, key}, {u"status"_qs, status}, {u"title"_qs, title}}, key,
                          u"detail of "_qs + status, progress, [](const QString &text) { return text; });
    }
    QStringList names() const
    {
        QStringList names;
        for (const QPushButton *button : row.buttons())
            names.append(button->objectName());
        return names;
    }
    QPushButton *button(const QString &name) const { return row.findChild<QPushButton *>(name); }
};

TEST_F(RowViewTest, standsAsLaidDown)
{
    row.setLook(look(u"transcribing"_qs, u"1"_qs, 0.5));
    const QRect icon = row.icon()->geometry();
    EXPECT_EQ(icon, QRect(14, 15, 64, 56));
    const QList<QPushButton *> buttons = row.buttons();
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_EQ(buttons.last()->geometry().right() + 1, 748 - 14);
    EXPECT_EQ(buttons.last()->x() - (buttons.first()->geometry().right() + 1), 8);
    EXPECT_EQ(buttons.first()->height(), 34);
    EXPECT_EQ(buttons.first()->y(), (86 - 34) / 2);
    EXPECT_EQ(row.title()->x(), 14 + 64 + 14);
    for (const QWidget *part : {static_cast<QWidget *>(row.title()), static_cast<QWidget *>(row.bar()),
                                static_cast<QWidget *>(row.detail())}) {
        EXPECT_EQ(part->x(), row.title()->x());
        EXPECT_EQ(part->geometry().right() + 1, buttons.first()->x() - 10);
    }
    EXPECT_EQ(row.bar()->y() - (row.title()->geometry().bottom() + 1), 5);
    EXPECT_EQ(row.detail()->y() - (row.bar()->geometry().bottom() + 1), 5);
    EXPECT_EQ(row.bar()->height(), 8);
    const int above = row.title()->y();
    const int below = 86 - (row.detail()->geometry().bottom() + 1);
    EXPECT_LE(qAbs(above - below), 1) << "centred in height";
}

TEST_F(RowViewTest, withoutABarTitleAndDetailStandTogether)
{
    row.setLook(look(u"ready"_qs));
    EXPECT_TRUE(row.bar()->isHidden());
    EXPECT_EQ(row.detail()->y() - (row.title()->geometry().bottom() + 1), 5);
    EXPECT_EQ(row.detail()->colour(), Colours::good);
    EXPECT_EQ(row.title()->colour(), Colours::navy);
    EXPECT_EQ(row.title()->font().pixelSize(), 15);
}

TEST_F(RowViewTest, isMirroredFromRightToLeft)
{
    for (const auto &[status, progress] : {std::pair(u"transcribing"_qs, 0.5), {u"ready"_qs, -2.0}}) {
        row.setLayoutDirection(Qt::LeftToRight);
        row.setLook(look(status, u"1"_qs, progress));
        const auto places = [&] {
            QList<QRect> rects{row.icon()->geometry(), row.title()->geometry(), row.detail()->geometry()};
            if (!row.bar()->isHidden())
                rects.append(row.bar()->geometry());
            for (const QPushButton *button : row.buttons())
                rects.append(button->geometry());
            return rects;
        };
        const QList<QRect> ltr = places();
        row.setLayoutDirection(Qt::RightToLeft);
        const QList<QRect> rtl = places();
        ASSERT_EQ(ltr.size(), rtl.size());
        for (qsizetype i = 0; i < ltr.size(); ++i) {
            EXPECT_EQ(rtl.at(i).left(), 748 - (ltr.at(i).right() + 1)) << i;
            EXPECT_EQ(rtl.at(i).size(), ltr.at(i).size());
            EXPECT_EQ(rtl.at(i).top(), ltr.at(i).top());
        }
    }
}

TEST_F(RowViewTest, aNarrowRowGivesTheTextsNoNegativeWidth)
{
    row.resize(200, 86);
    row.setLook(look(u"ready"_qs));
    EXPECT_EQ(row.title()->width(), 0);
    EXPECT_EQ(row.buttons().last()->geometry().right() + 1, 200 - 14);
}

TEST_F(RowViewTest, aRowWithoutButtonsEndsTenBeforeTheirPlace)
{
    row.setLook(look(u"starting"_qs, u"starting"_qs, -1));
    EXPECT_TRUE(row.buttons().isEmpty());
    EXPECT_EQ(row.bar()->geometry().right() + 1, 748 - 14 - 10);
    EXPECT_TRUE(row.bar()->isSweeping());
}

TEST_F(RowViewTest, saysWhatWasPressedOnWhichRow)
{
    row.setLook(look(u"ready"_qs, u"job 7"_qs));
    showAndWait(row);
    const QStringList expected{u"openRowViewer"_qs, u"openRowText"_qs, u"copyRowText"_qs,
                               u"showRowInFinder"_qs, u"removeRow"_qs};
    EXPECT_EQ(names(), expected);
    for (QPushButton *pressed : row.buttons())
        QTest::mouseClick(pressed, Qt::LeftButton);
    ASSERT_EQ(action.size(), 5);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(action.at(i), QVariantList({u"job 7"_qs, expected.at(i)}));
}

TEST_F(RowViewTest, tabGoesThroughTheButtonsInOrderWhateverCameBefore)
{
    // A failed row first, so that the icon is made before the second pill of the next one.
    row.setLook(look(u"failed"_qs));
    row.setLook(look(u"ready"_qs));
    showAndWait(row);
    const QList<QPushButton *> buttons = row.buttons();
    buttons.first()->setFocus();
    for (qsizetype i = 1; i < buttons.size(); ++i) {
        QTest::keyClick(row.focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(row.focusWidget(), buttons.at(i)) << i;
    }
    QTest::keyClick(row.focusWidget(), Qt::Key_Space);
    EXPECT_EQ(action.last().at(1), u"removeRow"_qs);
}

TEST_F(RowViewTest, keepsTheButtonsThatStay)
{
    row.setLook(look(u"transcribing"_qs, u"1"_qs, 0.1));
    showAndWait(row);
    const QList<QPushButton *> before = row.buttons();
    const QPointer<MascotView> icon = row.icon();
    before.first()->setFocus();
    RowLook next = look(u"transcribing"_qs, u"1"_qs, 0.2);
    next.detail = u"further"_qs;
    row.setLook(next);
    EXPECT_EQ(row.buttons(), before);
    EXPECT_EQ(row.icon(), icon);
    EXPECT_EQ(row.focusWidget(), before.first());
    EXPECT_EQ(row.detail()->text(), u"further"_qs);
    EXPECT_EQ(row.bar()->value(), 0.2);
    EXPECT_EQ(row.bar()->fillRect().width(), row.bar()->width() * 0.2);
}

TEST_F(RowViewTest, theSameLookRedrawsNothing)
{
    motion.setReducedMotion(true);
    row.setLook(look(u"transcribing"_qs, u"1"_qs, 0.1));
    showAndWait(row);
    PaintCounter counter(&row);
    row.update();
    ASSERT_TRUE(QTest::qWaitFor([&] { return counter.count > 0; }, test::patience));
    const int before = counter.count;
    row.setLook(look(u"transcribing"_qs, u"1"_qs, 0.1));
    QCoreApplication::processEvents();
    EXPECT_EQ(counter.count, before);
}

TEST_F(RowViewTest, hidesWhatTheNextLookDoesNotHave)
{
    row.setLook(look(u"ready"_qs));
    row.setLook(look(u"transcribing"_qs, u"1"_qs, -1));
    EXPECT_EQ(names(), QStringList({u"pauseRow"_qs, u"cancelRow"_qs}));
    EXPECT_FALSE(row.bar()->isHidden());
    int shown = 0;
    for (const QPushButton *each : row.findChildren<QPushButton *>())
        shown += !each->isHidden();
    EXPECT_EQ(shown, 2);
    row.setLook(look(u"starting"_qs));
    EXPECT_TRUE(row.buttons().isEmpty());
}

TEST_F(RowViewTest, aPressDoesNotOutliveTheRowItBeganOn)
{
    row.setLook(look(u"waiting"_qs, u"first"_qs));
    showAndWait(row);
    QPushButton *remove = button(u"removeWaiting"_qs);
    const QPoint middle = remove->rect().center();
    QTest::mousePress(remove, Qt::LeftButton, {}, middle);
    row.setLook(look(u"waiting"_qs, u"second"_qs));
    QMouseEvent moved(QEvent::MouseMove, QPointF(middle) + QPointF(1, 1),
                      remove->mapToGlobal(QPointF(middle) + QPointF(1, 1)), Qt::NoButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(remove, &moved);
    QTest::mouseRelease(remove, Qt::LeftButton, {}, middle);
    EXPECT_EQ(action.size(), 0);
    QTest::mouseClick(remove, Qt::LeftButton);
    ASSERT_EQ(action.size(), 1);
    EXPECT_EQ(action.at(0).at(0), u"second"_qs);
}

TEST_F(RowViewTest, aPressDoesNotBecomeAnotherCommand)
{
    row.setLook(look(u"transcribing"_qs, u"1"_qs, 0.5));
    showAndWait(row);
    QPushButton *first = row.buttons().first();
    QTest::keyPress(first, Qt::Key_Space);
    RowLook paused = look(u"transcribing"_qs, u"1"_qs, 0.5);
    paused.buttons.first().action = u"resumeRow"_qs;
    row.setLook(paused);
    QTest::keyRelease(first, Qt::Key_Space);
    EXPECT_EQ(action.size(), 0);
}

TEST_F(RowViewTest, aPressSurvivesAChangeThatDoesNotConcernIt)
{
    row.setLook(look(u"transcribing"_qs, u"1"_qs, 0.5));
    showAndWait(row);
    QPushButton *pause = button(u"pauseRow"_qs);
    QTest::mousePress(pause, Qt::LeftButton);
    RowLook next = look(u"transcribing"_qs, u"1"_qs, 0.6);
    next.detail = u"60%"_qs;
    row.setLook(next);
    QTest::mouseRelease(pause, Qt::LeftButton);
    EXPECT_EQ(action.size(), 1);
}

TEST_F(RowViewTest, mayChangeItsLookFromWithinItsOwnAction)
{
    row.setLook(look(u"failed"_qs, u"old"_qs));
    showAndWait(row);
    QObject::connect(&row, &RowView::action, &row, [this] { row.setLook(look(u"ready"_qs, u"new"_qs)); });
    QTest::mouseClick(button(u"retryRow"_qs), Qt::LeftButton);
    ASSERT_EQ(action.size(), 1);
    EXPECT_EQ(action.at(0), QVariantList({u"old"_qs, u"retryRow"_qs}));
    EXPECT_EQ(row.look().key, u"new"_qs);
}

TEST_F(RowViewTest, oneStillMascotServesEveryRowThatItIsUsedFor)
{
    for (const auto &status : {u"ready"_qs, u"waiting"_qs, u"cancelled"_qs, u"failed"_qs, u"ready"_qs}) {
        row.setLook(look(status, status));
        EXPECT_EQ(row.icon()->pose(), row.look().pose);
        EXPECT_EQ(row.icon()->isAnimated(), row.look().animated);
        EXPECT_FALSE(row.icon()->isHidden());
        QList<const MascotView *> seen;
        for (const MascotView *mascot : row.findChildren<MascotView *>()) {
            if (!mascot->isHidden())
                seen.append(mascot);
        }
        EXPECT_EQ(seen, QList<const MascotView *>{row.icon()});
    }
    const MascotView *still = row.icon();
    row.clearLook();
    EXPECT_TRUE(still->isHidden());
    row.setLook(look(u"cancelled"_qs, u"other"_qs));
    EXPECT_EQ(row.icon(), still);
    EXPECT_EQ(row.findChildren<MascotView *>().size(), 1);
}

TEST_F(RowViewTest, animatedMascotsMoveFromRowToRow)
{
    RowView other({sweep, mascots, cache});
    row.setLook(look(u"waiting"_qs, u"2"_qs));
    const QPointer<MascotView> second = row.icon();
    row.setLook(look(u"waiting"_qs, u"1"_qs));
    const QPointer<MascotView> icon = row.icon();
    EXPECT_NE(icon, second) << "another row of the same pose has its own";
    EXPECT_TRUE(icon->isAnimated());
    other.setLook(look(u"waiting"_qs, u"1"_qs));
    EXPECT_EQ(other.icon(), icon);
    EXPECT_EQ(icon->parent(), &other);
    row.setLook(look(u"ready"_qs, u"2"_qs));
    EXPECT_EQ(icon->parent(), &other) << "the first row has given it up already";
    EXPECT_FALSE(row.icon()->isAnimated());
    other.clearLook();
    EXPECT_FALSE(icon->parent());
    EXPECT_TRUE(icon);
    row.setLook(look(u"waiting"_qs, u"1"_qs));
    EXPECT_EQ(row.icon(), icon);
}

TEST_F(RowViewTest, aTakenMascotIsTakenBackByTheSameLook)
{
    RowView other({sweep, mascots, cache});
    row.setLook(look(u"waiting"_qs, u"1"_qs));
    other.setLook(look(u"waiting"_qs, u"1"_qs));
    other.clearLook();
    row.setLook(look(u"waiting"_qs, u"1"_qs));
    EXPECT_EQ(row.icon()->parent(), &row);
}

TEST_F(RowViewTest, leavesNothingOfAnEarlierRowBehind)
{
    row.setLook(look(u"failed"_qs));
    ASSERT_EQ(row.detail()->colour(), Colours::attention);
    row.clearLook();
    row.setLook(look(u"transcribing"_qs, u"2"_qs));
    EXPECT_EQ(row.detail()->colour(), Colours::slate);
}

TEST_F(RowViewTest, isAGroupOfNamedButtonsForAssistiveTools)
{
    row.setLook(look(u"ready"_qs, u"1"_qs, -2, u"Talk"_qs));
    showAndWait(row);
    QAccessibleInterface *group = accessible(&row);
    EXPECT_EQ(group->role(), QAccessible::Grouping);
    EXPECT_EQ(group->text(QAccessible::Name), u"Talk. detail of ready"_qs);
    QStringList children;
    for (int i = 0; i < group->childCount(); ++i) {
        QAccessibleInterface *child = group->child(i);
        EXPECT_EQ(child->role(), QAccessible::Button);
        EXPECT_TRUE(child->state().focusable);
        EXPECT_EQ(child->parent(), group);
        EXPECT_EQ(group->indexOfChild(child), i);
        children.append(child->text(QAccessible::Name));
    }
    EXPECT_EQ(children, QStringList({u"Open — Talk"_qs, u"Summary — Talk"_qs, u"Copy Text — Talk"_qs,
                                     u"Show in Finder — Talk"_qs, u"Remove… — Talk"_qs}));
}

TEST_F(RowViewTest, theBarIsTheFirstOfTheGroup)
{
    row.setLook(look(u"transcribing"_qs, u"1"_qs, 0.5));
    QAccessibleInterface *group = accessible(&row);
    ASSERT_EQ(group->childCount(), 3);
    EXPECT_EQ(group->child(0)->role(), QAccessible::ProgressBar);
    EXPECT_EQ(group->child(0)->text(QAccessible::Name), u"detail of transcribing"_qs);
    EXPECT_EQ(group->child(0)->valueInterface()->currentValue(), QVariant(0.5));
    EXPECT_FALSE(group->child(3));
    RowLook selected = row.look();
    selected.selected = true;
    row.setLook(selected);
    EXPECT_TRUE(group->state().selected);
}

TEST_F(RowViewTest, aTipOnTheDetailIsShownAsText)
{
    RowLook russian = look(u"ready"_qs);
    russian.detailTip = u"Warning!"_qs;
    row.setLook(russian);
    EXPECT_EQ(row.detail()->toolTip(), u"Warning!"_qs);
    row.setLook(look(u"ready"_qs));
    EXPECT_TRUE(row.detail()->toolTip().isEmpty());
}

TEST_F(RowViewTest, theCardFollowsTheLook)
{
    row.setLook(look(u"transcribing"_qs, u"1"_qs, 0.5));
    EXPECT_TRUE(row.isActiveCard());
    EXPECT_COLOUR(pictureOf(row).pixelColor(300, 5), Colours::accentBlue);
    row.setLook(look(u"ready"_qs));
    EXPECT_COLOUR(pictureOf(row).pixelColor(300, 5), Qt::white);
}

} // namespace

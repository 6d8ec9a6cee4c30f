#include "ui/CardRowView.h"
#include "ui/Colours.h"
#include "ui/ModelCard.h"

#include "uitest.h"

#include <QLabel>
#include <QPainter>
#include <QSignalSpy>
#include <QVBoxLayout>

using namespace tuppi;

namespace {

const QColor blue(0, 87, 183);
const QColor paleBlue(0, 87, 183, qRound(0.35 * 255));

/// What the faint outline looks like where it lies half on white.
QColor onWhite(const QColor &colour)
{
    QImage image(1, 1, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.fillRect(image.rect(), colour);
    painter.end();
    return image.pixelColor(0, 0);
}

TEST(CardRowView, isAWhiteRoundedCardInsetInItsRow)
{
    CardRowView row;
    row.resize(300, 86);
    const QImage picture = pictureOf(row);
    EXPECT_COLOUR(picture.pixelColor(150, 43), Qt::white);
    EXPECT_EQ(picture.pixelColor(0, 43).alpha(), 0);
    EXPECT_COLOUR(picture.pixelColor(1, 43), Qt::white);
    EXPECT_EQ(picture.pixelColor(150, 4).alpha(), 0);
    EXPECT_COLOUR(picture.pixelColor(150, 5), Qt::white);
    EXPECT_COLOUR(picture.pixelColor(150, 80), Qt::white);
    EXPECT_EQ(picture.pixelColor(150, 81).alpha(), 0);
    // A corner of radius 20 cuts the diagonal 20 · (1 − 1/√2) ≈ 5.9 in from the corner of the card.
    EXPECT_EQ(picture.pixelColor(1 + 4, 5 + 4).alpha(), 0);
    EXPECT_EQ(picture.pixelColor(1 + 7, 5 + 7).alpha(), 255);
}

TEST(CardRowView, outlineTellsActiveBeforeSelected)
{
    CardRowView row;
    row.resize(300, 86);
    row.setSelected(true);
    QImage picture = pictureOf(row);
    EXPECT_COLOUR(picture.pixelColor(150, 5), onWhite(paleBlue));
    EXPECT_COLOUR(picture.pixelColor(150, 4), paleBlue);
    EXPECT_COLOUR(picture.pixelColor(150, 43), Qt::white);
    row.setActiveCard(true);
    picture = pictureOf(row);
    EXPECT_COLOUR(picture.pixelColor(150, 5), blue);
    EXPECT_COLOUR(picture.pixelColor(150, 4), blue);
    EXPECT_COLOUR(picture.pixelColor(0, 43), blue);
    EXPECT_COLOUR(picture.pixelColor(150, 43), Qt::white);
    row.setSelected(false);
    EXPECT_COLOUR(pictureOf(row).pixelColor(150, 5), blue);
    row.setActiveCard(false);
    EXPECT_COLOUR(pictureOf(row).pixelColor(150, 5), Qt::white);
}

struct ModelCardTest : testing::Test
{
    QWidget window;
    ModelCard *card = new ModelCard(u"whisper"_qs, &window);
    ModelCard *other = new ModelCard(u"parakeet"_qs, &window);
    QSignalSpy chosen{card, &ModelCard::chosen};

    void SetUp() override
    {
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(card);
        layout->addWidget(other);
        card->setTexts(u"Whisper"_qs, u"Accurate"_qs, u"Many languages\nSlow but sure"_qs);
        showAndWait(window);
    }
};

TEST_F(ModelCardTest, coloursFollowThePick)
{
    card->clearFocus();
    const int middle = card->width() / 2;
    QImage picture = pictureOf(*card);
    EXPECT_COLOUR(picture.pixelColor(middle, 0), QColor(221, 232, 247));
    EXPECT_COLOUR(picture.pixelColor(middle, 1), QColor(221, 232, 247));
    EXPECT_COLOUR(picture.pixelColor(middle, 4), Qt::white);
    card->setPicked(true);
    picture = pictureOf(*card);
    EXPECT_COLOUR(picture.pixelColor(middle, 1), blue);
    EXPECT_COLOUR(picture.pixelColor(middle, 4), QColor(238, 245, 255));
    EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(card->radius(), 16);
    EXPECT_EQ(card->width(), 247);
    EXPECT_GE(card->height(), 92);
    card->setPicked(false);
    EXPECT_COLOUR(pictureOf(*card).pixelColor(middle, 4), Qt::white);
}

TEST_F(ModelCardTest, everyPointOfItIsTheCard)
{
    const QList<QWidget *> inside = card->findChildren<QWidget *>();
    EXPECT_GE(inside.size(), 3);
    for (int x = 0; x < card->width(); x += 6) {
        for (int y = 0; y < card->height(); y += 6) {
            ASSERT_EQ(window.childAt(card->mapTo(&window, QPoint(x, y))), card) << x << ',' << y;
        }
    }
    auto *late = new QLabel(u"late"_qs, card);
    late->setGeometry(card->rect());
    late->show();
    QCoreApplication::processEvents();
    EXPECT_EQ(window.childAt(card->geometry().center()), card);
}

TEST_F(ModelCardTest, aReleaseInsideChooses)
{
    QTest::mousePress(card, Qt::LeftButton, {}, QPoint(10, 10));
    EXPECT_EQ(chosen.size(), 0) << "pressing does nothing";
    QTest::mouseRelease(card, Qt::LeftButton, {}, card->rect().bottomRight());
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen.at(0).at(0).value<ModelCard *>(), card);
    EXPECT_FALSE(card->isPicked()) << "who listens decides";
}

TEST_F(ModelCardTest, aClickLeavesTheFocusAlone)
{
    other->setFocus();
    QTest::mouseClick(card, Qt::LeftButton);
    EXPECT_EQ(window.focusWidget(), other);
}

TEST_F(ModelCardTest, aReleaseOutsideDoesNot)
{
    QTest::mousePress(card, Qt::LeftButton);
    QTest::mouseRelease(card, Qt::LeftButton, {}, QPoint(-3, 10));
    QTest::mousePress(card, Qt::LeftButton);
    QTest::mouseRelease(card, Qt::LeftButton, {}, QPoint(10, card->height()));
    QTest::mouseClick(card, Qt::RightButton);
    EXPECT_EQ(chosen.size(), 0);
}

TEST_F(ModelCardTest, tabReachesItAndSpaceAndReturnChoose)
{
    card->setFocus();
    QTest::keyClick(card, Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), other);
    QTest::keyClick(other, Qt::Key_Tab, Qt::ShiftModifier);
    EXPECT_EQ(window.focusWidget(), card);
    QTest::keyClick(card, Qt::Key_Space);
    EXPECT_EQ(chosen.size(), 1);
    QTest::keyClick(card, Qt::Key_Return);
    EXPECT_EQ(chosen.size(), 2);
    QTest::keyClick(card, Qt::Key_Enter);
    EXPECT_EQ(chosen.size(), 3);
}

TEST_F(ModelCardTest, otherKeysGoOn)
{
    struct Catcher : QWidget
    {
        QList<int> keys;
        void keyPressEvent(QKeyEvent *event) override
        {
            if (event->key() != Qt::Key_Control)
                keys.append(event->key());
        }
    } catcher;
    card->setParent(&catcher);
    for (int key : {Qt::Key_A, Qt::Key_Escape, Qt::Key_Down})
        QTest::keyClick(card, Qt::Key(key));
    QTest::keyClick(card, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(catcher.keys, QList<int>({Qt::Key_A, Qt::Key_Escape, Qt::Key_Down, Qt::Key_Return}));
    QTest::keyClick(card, Qt::Key_Space);
    EXPECT_EQ(catcher.keys.size(), 4);
    EXPECT_EQ(chosen.size(), 1);
    card->setParent(&window);
}

TEST_F(ModelCardTest, isAChoiceForAssistiveTools)
{
    QAccessibleInterface *interface = accessible(card);
    ASSERT_TRUE(interface);
    EXPECT_EQ(interface->role(), QAccessible::RadioButton);
    EXPECT_EQ(interface->text(QAccessible::Name), u"Whisper"_qs);
    EXPECT_EQ(interface->childCount(), 0);
    EXPECT_TRUE(interface->state().checkable);
    EXPECT_TRUE(interface->state().focusable);
    EXPECT_FALSE(interface->state().checked);
    EXPECT_EQ(interface->text(QAccessible::Value), u"0"_qs);
    card->setPicked(true);
    EXPECT_TRUE(interface->state().checked);
    EXPECT_EQ(interface->text(QAccessible::Value), u"1"_qs);

    QAccessibleActionInterface *actions = interface->actionInterface();
    ASSERT_TRUE(actions);
    EXPECT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(chosen.size(), 1);
    actions->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(window.focusWidget(), card);
}

TEST_F(ModelCardTest, showsTheLastLineOfItsDescription)
{
    EXPECT_EQ(card->toolTip(), u"Many languages\nSlow but sure"_qs);
    QStringList shown;
    for (const QLabel *label : card->findChildren<QLabel *>()) {
        if (!label->isHidden())
            shown.append(label->text());
    }
    EXPECT_EQ(shown, QStringList({u"Whisper"_qs, u"Accurate"_qs, u"Slow but sure"_qs}));
    card->setTexts(u"Mine"_qs, QString(), u"one line"_qs);
    shown.clear();
    for (const QLabel *label : card->findChildren<QLabel *>()) {
        if (!label->isHidden())
            shown.append(label->text());
    }
    EXPECT_EQ(shown, QStringList({u"Mine"_qs, u"one line"_qs}));
}

TEST_F(ModelCardTest, theFocusRingIsRounded)
{
    window.activateWindow();
    card->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(QTest::qWaitFor([this] { return card->hasFocus(); }, test::patience));
    const QImage picture = pictureOf(*card);
    const int middle = card->width() / 2;
    EXPECT_COLOUR(picture.pixelColor(middle, 0), Colours::focusRing);
    EXPECT_EQ(picture.pixelColor(1, 1).alpha(), 0);
    card->setPicked(true);
    EXPECT_COLOUR(pictureOf(*card).pixelColor(middle, 4), blue) << "the border stays beside it";
}

} // namespace

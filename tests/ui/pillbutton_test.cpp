#include "ui/Colours.h"
#include "ui/IconButton.h"
#include "ui/PillButton.h"

#include "uitest.h"

#include <QSignalSpy>
#include <QVBoxLayout>

using namespace tuppi;

namespace {

struct StyleCase
{
    int style;
    QColor fill;
    QColor border; ///< invalid: none
    QColor title;
};

class PillStyles : public testing::TestWithParam<StyleCase>
{
};

TEST_P(PillStyles, areDrawn)
{
    const std::unique_ptr<PillButton> pill(Pill(u"Title"_qs, GetParam().style, 34));
    pill->setFixedWidth(200);
    EXPECT_EQ(pill->titleColour(), GetParam().title);
    const QImage picture = pictureOf(*pill);
    EXPECT_COLOUR(picture.pixelColor(20, 17), GetParam().fill);
    const QColor edge = GetParam().border.isValid() ? GetParam().border : GetParam().fill;
    EXPECT_COLOUR(picture.pixelColor(100, 0), edge);
    EXPECT_COLOUR(picture.pixelColor(100, 1), edge);
    EXPECT_COLOUR(picture.pixelColor(100, 3), GetParam().fill);
    EXPECT_COLOUR(picture.pixelColor(0, 17), edge);
    EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 0) << "the corner is rounded off";
}

INSTANTIATE_TEST_SUITE_P(Table, PillStyles,
                         testing::Values(StyleCase{0, QColor(0, 87, 183), {}, Qt::white},
                                         StyleCase{1, Qt::white, QColor(125, 149, 181), QColor(11, 37, 69)},
                                         StyleCase{2, QColor(252, 232, 230), {}, QColor(161, 40, 28)},
                                         StyleCase{3, QColor(255, 241, 194), {}, QColor(11, 37, 69)},
                                         StyleCase{4, Qt::white, {}, QColor(11, 37, 69)},
                                         StyleCase{-1, Qt::white, {}, QColor(11, 37, 69)}));

TEST(PillButton, isSquareWithoutATitle)
{
    PillButton pill;
    pill.setPillHeight(40);
    pill.setPad(14);
    EXPECT_EQ(pill.sizeHint(), QSize(40, 40));
}

TEST(PillButton, isPaddedTwiceWithATitle)
{
    PillButton pill;
    pill.setPillHeight(34);
    pill.setTitle(u"Open"_qs);
    const QSize natural = pill.sizeHint();
    EXPECT_EQ(natural.height(), 34);
    EXPECT_GT(natural.width(), pill.fontMetrics().horizontalAdvance(u"Open"_qs));
    pill.setPad(14);
    EXPECT_EQ(pill.sizeHint().width(), natural.width() + 28);
    EXPECT_EQ(pill.sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
}

TEST(PillButton, isRounderFrom44On)
{
    PillButton pill;
    for (const auto &[height, radius] : {std::pair(44.0, 14.0), {43.9, 11.0}, {60.0, 14.0}, {34.0, 11.0}}) {
        pill.setPillHeight(height);
        EXPECT_EQ(pill.radius(), radius) << height;
    }
}

TEST(PillButton, fontAndPaddingFollowTheHeight)
{
    const std::unique_ptr<PillButton> large(Pill(u"Start"_qs, 0, 44));
    const std::unique_ptr<PillButton> small(Pill(u"Start"_qs, 0, 43.9));
    EXPECT_EQ(large->pad(), 14);
    EXPECT_EQ(large->font().pixelSize(), 16);
    EXPECT_EQ(large->font().weight(), QFont::DemiBold);
    EXPECT_EQ(small->pad(), 4);
    EXPECT_EQ(small->font().pixelSize(), 13);
    EXPECT_EQ(small->font().weight(), QFont::ExtraBold);
}

TEST(PillButton, palesWhilePressedAndDisabled)
{
    const std::unique_ptr<PillButton> pill(Pill(u"Open"_qs, 0, 34));
    EXPECT_EQ(pill->fill().alpha(), 255);
    pill->setDown(true);
    EXPECT_EQ(pill->fill().alpha(), qRound(0.82 * 255));
    EXPECT_COLOUR(pictureOf(*pill).pixelColor(6, 17), QColor(0, 87, 183, qRound(0.82 * 255)));
    pill->setDown(false);
    pill->setEnabled(false);
    EXPECT_NEAR(pill->fill().alpha(), 127.5, 1);
    EXPECT_NEAR(pictureOf(*pill).pixelColor(6, 17).alpha(), 127.5, 2);
}

TEST(PillButton, aPressedPillIsPressedBeforeItIsDisabled)
{
    PillButton pill;
    // In this order, as disabling lets go of a held button.
    pill.setEnabled(false);
    pill.setDown(true);
    EXPECT_EQ(pill.fill().alpha(), qRound(0.82 * 255));
}

TEST(PillButton, hoverChangesTheFillOfEnabledPillsOnly)
{
    for (int style : {0, 1, 2, 3, 4}) {
        const std::unique_ptr<PillButton> pill(Pill(u"Open"_qs, style, 34));
        const QColor rest = pill->fill();
        pill->setAttribute(Qt::WA_UnderMouse);
        EXPECT_NE(pill->fill(), rest) << style;
        pill->setEnabled(false);
        EXPECT_EQ(pill->fill().rgb(), rest.rgb()) << style;
    }
}

TEST(PillButton, pressingAndReleasingRedrawAtOnce)
{
    const std::unique_ptr<PillButton> pill(Pill(u"Open"_qs, 0, 34));
    showAndWait(*pill);
    PaintCounter counter(pill.get());
    QTest::mousePress(pill.get(), Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return counter.count > 0; }, test::patience));
    const int pressed = counter.count;
    QTest::mouseRelease(pill.get(), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return counter.count > pressed; }, test::patience));
}

TEST(PillButton, answersMouseAndKeys)
{
    const std::unique_ptr<PillButton> pill(Pill(u"Open"_qs, 0, 34));
    showAndWait(*pill);
    QSignalSpy clicked(pill.get(), &PillButton::clicked);
    QTest::mouseClick(pill.get(), Qt::LeftButton);
    EXPECT_EQ(clicked.size(), 1);
    QTest::mousePress(pill.get(), Qt::LeftButton);
    QTest::mouseRelease(pill.get(), Qt::LeftButton, {}, QPoint(-5, -5));
    EXPECT_EQ(clicked.size(), 1) << "released outside";
    QTest::mouseClick(pill.get(), Qt::RightButton);
    EXPECT_EQ(clicked.size(), 1);
    QTest::keyClick(pill.get(), Qt::Key_Space);
    EXPECT_EQ(clicked.size(), 2);
    QTest::keyClick(pill.get(), Qt::Key_Return);
    EXPECT_EQ(clicked.size(), 3);
    QTest::keyClick(pill.get(), Qt::Key_A);
    EXPECT_EQ(clicked.size(), 3);
    pill->setEnabled(false);
    QTest::mouseClick(pill.get(), Qt::LeftButton);
    QTest::keyClick(pill.get(), Qt::Key_Space);
    EXPECT_EQ(clicked.size(), 3);
}

TEST(PillButton, tabReachesItAndAClickLeavesTheFocusAlone)
{
    QWidget window;
    QVBoxLayout layout(&window);
    auto *field = new QWidget;
    field->setFocusPolicy(Qt::StrongFocus);
    PillButton *pill = Pill(u"Open"_qs, 0, 34);
    layout.addWidget(field);
    layout.addWidget(pill);
    showAndWait(window);
    field->setFocus();
    QTest::mouseClick(pill, Qt::LeftButton);
    EXPECT_EQ(window.focusWidget(), field);
    QTest::keyClick(field, Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), pill);
}

TEST(PillButton, theFocusRingShowsOnEveryFill)
{
    for (int style : {0, 1, 2, 3}) {
        const std::unique_ptr<PillButton> pill(Pill(u"Open"_qs, style, 34));
        showAndWait(*pill);
        pill->activateWindow();
        pill->clearFocus();
        const QImage without = pictureOf(*pill);
        pill->setFocus(Qt::TabFocusReason);
        ASSERT_TRUE(QTest::qWaitFor([&] { return pill->hasFocus(); }, test::patience));
        const QImage with = pictureOf(*pill);
        const int middle = pill->width() / 2;
        EXPECT_COLOUR(with.pixelColor(middle, 0), Colours::focusRing);
        EXPECT_NE(with.pixelColor(middle, 0), without.pixelColor(middle, 0)) << style;
        EXPECT_EQ(with.pixelColor(0, 0).alpha(), 0) << "the ring is rounded as the pill is";
    }
}

TEST(PillButton, anAmpersandIsText)
{
    const std::unique_ptr<PillButton> pill(Pill(u"Q&A"_qs, 1, 34));
    EXPECT_TRUE(pill->shortcut().isEmpty());
    EXPECT_EQ(accessible(pill.get())->text(QAccessible::Name), u"Q&A"_qs);
    EXPECT_EQ(pill->title(), u"Q&A"_qs);
}

TEST(PillButton, isAButtonForAssistiveTools)
{
    const std::unique_ptr<PillButton> pill(Pill(u"Open"_qs, 1, 34));
    QAccessibleInterface *interface = accessible(pill.get());
    EXPECT_EQ(interface->role(), QAccessible::Button);
    EXPECT_EQ(interface->text(QAccessible::Name), u"Open"_qs);
    ASSERT_TRUE(interface->actionInterface());
    EXPECT_TRUE(
        interface->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    EXPECT_TRUE(interface->state().focusable);
    showAndWait(*pill);
    QSignalSpy clicked(pill.get(), &PillButton::clicked);
    interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(QTest::qWaitFor([&] { return clicked.size() == 1; }, test::patience));
}

TEST(IconPill, isRoundedSquareNamedByItsTip)
{
    const std::unique_ptr<PillButton> pill(IconPill(u"test.half"_qs, u"Add audio file"_qs, 0));
    EXPECT_EQ(pill->sizeHint(), QSize(40, 40));
    EXPECT_EQ(pill->maximumWidth(), 40);
    EXPECT_EQ(pill->toolTip(), u"Add audio file"_qs);
    EXPECT_EQ(accessible(pill.get())->text(QAccessible::Name), u"Add audio file"_qs);
    pill->resize(40, 40);
    const QImage picture = pictureOf(*pill);
    EXPECT_COLOUR(picture.pixelColor(16, 20), Qt::white);           // the left half of the symbol
    EXPECT_COLOUR(picture.pixelColor(24, 20), Colours::accentBlue); // its empty half
    const std::unique_ptr<PillButton> red(IconPill(u"test.half"_qs, u"Remove"_qs, 2));
    EXPECT_EQ(red->titleColour(), Colours::attention);
}

TEST(IconButton, showsATintedSymbolAndNothingElse)
{
    const std::unique_ptr<IconButton> button(iconButton(u"test.half"_qs, u"Settings…"_qs));
    EXPECT_EQ(button->sizeHint(), QSize(28, 28));
    EXPECT_EQ(button->toolTip(), u"Settings…"_qs);
    EXPECT_EQ(accessible(button.get())->text(QAccessible::Name), u"Settings…"_qs);
    EXPECT_EQ(accessible(button.get())->role(), QAccessible::Button);
    button->resize(28, 28);
    const QImage picture = pictureOf(*button);
    EXPECT_COLOUR(picture.pixelColor(10, 14), Colours::accentBlue);
    EXPECT_EQ(picture.pixelColor(20, 14).alpha(), 0);
    button->setTint(Colours::slate);
    EXPECT_COLOUR(pictureOf(*button).pixelColor(10, 14), Colours::slate);
}

TEST(IconButton, changesItsSymbolAndTipLater)
{
    const std::unique_ptr<IconButton> button(iconButton(u"test.half"_qs, QString()));
    EXPECT_TRUE(accessible(button.get())->text(QAccessible::Name).isEmpty());
    button->setTip(u"Turn sounds off"_qs);
    EXPECT_EQ(accessible(button.get())->text(QAccessible::Name), u"Turn sounds off"_qs);
}

TEST(IconButton, hoverPressAndFocusShow)
{
    const std::unique_ptr<IconButton> button(iconButton(u"test.half"_qs, u"tip"_qs));
    button->resize(28, 28);
    const auto ground = [&] { return pictureOf(*button).pixelColor(24, 6).alpha(); };
    EXPECT_EQ(ground(), 0);
    button->setAttribute(Qt::WA_UnderMouse);
    const int hovered = ground();
    EXPECT_GT(hovered, 0);
    button->setDown(true);
    EXPECT_GT(ground(), hovered);
}

} // namespace

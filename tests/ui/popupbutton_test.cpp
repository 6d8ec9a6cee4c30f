#include "ui/PopUpButton.h"

#include "uitest.h"

#include <QAbstractItemView>
#include <QInputMethodEvent>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

struct PopUpButtonTest : testing::Test
{
    PopUpButton button;
    QSignalSpy changed{&button, &QComboBox::currentIndexChanged};
    QSignalSpy picked{&button, &QComboBox::activated};

    void SetUp() override
    {
        button.addItems({u"Danish"_s, u"English"_s, u"Polish"_s, u"Portuguese"_s, u"Ґанок"_s});
        button.setCurrentIndex(1);
        changed.clear();
        showAndWait(button);
        button.setFocus();
    }
    bool isOpen() const { return button.view()->isVisible(); }
    QString lit() const { return button.view()->currentIndex().data().toString(); }
    bool isUntouched() const { return button.currentIndex() == 1 && changed.isEmpty() && picked.isEmpty(); }
};

TEST_F(PopUpButtonTest, keysThatWouldChooseInPassingDoNothing)
{
    for (const Qt::Key key : {Qt::Key_Home, Qt::Key_End, Qt::Key_PageUp, Qt::Key_PageDown})
        QTest::keyClick(&button, key);
    for (const Qt::KeyboardModifier held : {Qt::AltModifier, Qt::ControlModifier, Qt::MetaModifier})
        QTest::keyClick(&button, 'p', held);
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(isUntouched());
}

TEST_F(PopUpButtonTest, keysThatOpenIt)
{
    using Press = std::pair<Qt::Key, Qt::KeyboardModifiers>;
    for (const auto &[key, held] : {Press(Qt::Key_Space, {}), Press(Qt::Key_Up, {}), Press(Qt::Key_Down, {}),
                                    Press(Qt::Key_Down, Qt::AltModifier), Press(Qt::Key_F4, {})}) {
        QTest::keyClick(&button, key, held);
        EXPECT_TRUE(isOpen()) << key;
        EXPECT_EQ(lit(), u"English"_s);
        EXPECT_TRUE(isUntouched());
        button.hidePopup();
    }
}

TEST_F(PopUpButtonTest, lettersOpenItAtWhatBeginsSo)
{
    QTest::keyClick(&button, 'p');
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(lit(), u"Polish"_s);
    QTest::keyClick(button.view(), 'o');
    QTest::keyClick(button.view(), 'r');
    EXPECT_EQ(lit(), u"Portuguese"_s);
    EXPECT_TRUE(isUntouched());
    QTest::keyClick(button.view(), Qt::Key_Return);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(button.currentText(), u"Portuguese"_s);
    EXPECT_EQ(picked.size(), 1);
}

TEST_F(PopUpButtonTest, aLetterThatNothingBeginsWithOpensItAsItIs)
{
    QTest::keyClick(&button, 'x');
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(lit(), u"English"_s);
    QTest::keyClick(button.view(), Qt::Key_Escape);
    EXPECT_TRUE(isUntouched());
}

TEST_F(PopUpButtonTest, whatAnInputMethodWritesOpensItToo)
{
    QInputMethodEvent written;
    written.setCommitString(u"Ґ"_s);
    QCoreApplication::sendEvent(&button, &written);
    ASSERT_TRUE(isOpen());
    EXPECT_EQ(lit(), u"Ґанок"_s);
    EXPECT_TRUE(isUntouched());
}

TEST_F(PopUpButtonTest, theItemThatIsShownCanBePickedAgain)
{
    QTest::keyClick(&button, Qt::Key_Space);
    QTest::keyClick(button.view(), Qt::Key_Return);
    EXPECT_EQ(picked.size(), 1);
    EXPECT_TRUE(changed.isEmpty());
}

} // namespace

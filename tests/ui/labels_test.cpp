#include "ui/Colours.h"
#include "ui/Labels.h"

#include "uitest.h"

#include <QHBoxLayout>
#include <QTextLayout>

using namespace tuppi;

namespace {

TEST(ElidedLabel, endsInAnEllipsisWhereItDoesNotFit)
{
    ElidedLabel label;
    label.setText(u"A recording with a long title"_qs);
    label.resize(label.sizeHint());
    EXPECT_EQ(label.shownText(), label.text());
    label.resize(80, label.height());
    EXPECT_TRUE(label.shownText().endsWith(u'…'));
    EXPECT_TRUE(label.shownText().startsWith(u'A'));
    EXPECT_EQ(label.minimumSizeHint().width(), 0);
    EXPECT_EQ(accessible(&label)->text(QAccessible::Name), label.text());
}

TEST(ElidedLabel, staysOnOneLineAndPlain)
{
    ElidedLabel label;
    label.setText(u"two\nlines <b>x</b>"_qs);
    label.resize(label.sizeHint());
    EXPECT_EQ(label.shownText(), u"two lines <b>x</b>"_qs);
}

/// How tall a line of the text is in the fonts that draw it.
double lineHeight(const QString &text, const QFont &font)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setNumColumns(int(text.size()));
    layout.endLayout();
    return line.height();
}

/// Fonts that stand in for a script may be taller than the label's own.
TEST(Labels, haveTheHeightOfTheirScript)
{
    for (const QString &text : {u"Interview"_qs, u"हिन्दी में टेक्स्ट"_qs, u"مقابلة"_qs, u"新转写"_qs}) {
        ElidedLabel line;
        line.setText(text);
        EXPECT_GE(line.sizeHint().height() + 1, lineHeight(text, line.font())) << text.toStdString();
        EXPECT_EQ(line.minimumSizeHint().height(), line.sizeHint().height());
        WrapLabel lines;
        lines.setText(text + u'\n' + text);
        EXPECT_GE(lines.heightForWidth(1000), 2 * lineHeight(text, lines.font())) << text.toStdString();
    }
}

/// The first and last columns that are drawn on.
QPair<int, int> inked(const QImage &image)
{
    int first = image.width();
    int last = -1;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y).alpha() > 100) {
                first = qMin(first, x);
                last = qMax(last, x);
            }
        }
    }
    return {first, last};
}

TEST(ElidedLabel, standsAtTheLeadingEdgeWhateverTheScript)
{
    for (const QString &text : {u"Interview"_qs, u"مقابلة"_qs}) {
        ElidedLabel label;
        label.setText(text);
        label.resize(400, 24);
        EXPECT_LT(inked(pictureOf(label)).first, 5) << text.toStdString();
        label.setLayoutDirection(Qt::RightToLeft);
        EXPECT_GT(inked(pictureOf(label)).second, 394) << text.toStdString();
    }
}

TEST(WrapLabel, wrapsAtThePreferredWidthAndNoLater)
{
    WrapLabel label;
    label.setPreferredWidth(200);
    label.setText(u"short"_qs);
    const int line = label.sizeHint().height();
    EXPECT_LT(label.sizeHint().width(), 200);
    label.setText(u"a text that goes on for so long that it has to be broken into several lines"_qs);
    EXPECT_LE(label.sizeHint().width(), 200);
    EXPECT_GT(label.sizeHint().height(), 2 * line);
    EXPECT_LT(label.heightForWidth(1000), label.heightForWidth(200));
}

TEST(WrapLabel, endsEveryLineAtTheEdgeItIsAlignedTo)
{
    WrapLabel whole;
    whole.setLayoutDirection(Qt::RightToLeft);
    whole.setText(u"mmmmmmmm mmmmmmmm"_qs);
    const int width = whole.fontMetrics().horizontalAdvance(u"mmmmmmmm mm"_qs);
    whole.resize(width, whole.heightForWidth(width));
    const int lineHeight = whole.height() / 2;
    const QImage picture = pictureOf(whole);
    const auto first = inked(picture.copy(0, 0, width, lineHeight));
    const auto second = inked(picture.copy(0, lineHeight, width, lineHeight));
    ASSERT_GE(first.second, 0);
    EXPECT_EQ(first, second);
}

/// A line that begins with a name in another script reads as the rest of its paragraph does.
TEST(WrapLabel, linesRunAsTheirParagraph)
{
    const auto drawn = [](const QString &text) {
        WrapLabel label;
        label.setLayoutDirection(Qt::RightToLeft);
        label.setText(text);
        const int width = label.fontMetrics().horizontalAdvance(u"نموذج النص الطويل Oll"_qs);
        label.resize(width, label.heightForWidth(width));
        EXPECT_EQ(label.shownText().section(u'\n', 1).remove(QChar(0x200f)), u"Ollama: نص"_qs) << label.shownText().toStdString();
        return pictureOf(label);
    };
    const QImage one = drawn(u"نموذج النص الطويل Ollama: نص"_qs);
    EXPECT_EQ(one, drawn(u"نموذج النص الطويل\n\u200fOllama: نص"_qs));
    EXPECT_NE(one, drawn(u"نموذج النص الطويل\nOllama: نص"_qs));
}

TEST(WrapLabel, keepsToItsNumberOfLines)
{
    WrapLabel label;
    label.setText(u"a text that goes on for so long that it has to be broken into several lines"_qs);
    const int all = label.heightForWidth(120);
    label.setMaximumLines(2);
    EXPECT_LT(label.heightForWidth(120), all);
    label.setMaximumLines(20);
    EXPECT_EQ(label.heightForWidth(120), all);
    label.setText(u"one\ntwo\nthree"_qs);
    label.setMaximumLines(0);
    const int three = label.heightForWidth(400);
    label.setMaximumLines(1);
    EXPECT_NEAR(label.heightForWidth(400) * 3, three, 3);
}

TEST(SectionLabel, isUpperCaseAndSpaced)
{
    const std::unique_ptr<QLabel> label(SectionLabel(u"Language"_qs, u"en"_qs));
    EXPECT_EQ(label->text(), u"LANGUAGE"_qs);
    EXPECT_NEAR(label->font().letterSpacing(), 0.6, 1.0 / 64) << "fonts count in 64ths";
    EXPECT_EQ(label->font().pixelSize(), 12);
    EXPECT_EQ(label->palette().color(QPalette::WindowText), Colours::slate);
    for (const QString &language : {u"ar"_qs, u"hi"_qs, u"zh-Hans"_qs}) {
        const std::unique_ptr<QLabel> tight(SectionLabel(u"Language"_qs, language));
        EXPECT_EQ(tight->font().letterSpacing(), 0) << language.toStdString();
    }
}

TEST(Hint, isSmallAndAtMost400Wide)
{
    const std::unique_ptr<WrapLabel> label(hint(QString(300, u'n')));
    EXPECT_EQ(label->font().pixelSize(), 11);
    EXPECT_LE(label->sizeHint().width(), 400);
}

TEST(Indent, leavesRoomAtTheLeadingEdge)
{
    auto *view = new QWidget;
    const std::unique_ptr<QWidget> container(indent(view, 22));
    container->resize(300, 40);
    container->layout()->activate();
    EXPECT_EQ(view->geometry(), QRect(22, 0, 278, 40));
    container->setLayoutDirection(Qt::RightToLeft);
    container->layout()->activate();
    EXPECT_EQ(view->geometry(), QRect(0, 0, 278, 40));
}

} // namespace

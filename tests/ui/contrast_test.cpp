// Every text and its ground, every mark and what it stands on, against WCAG 2.1 AA: 4.5 for text, 3 for large text, for
// what a control is told by and for the sign of the keyboard. The interface is light only.

#include "ui/Colours.h"
#include "ui/Metrics.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

#include <cmath>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &colour)
{
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

double contrast(const QColor &one, const QColor &other)
{
    const auto [less, more] = std::minmax({luminance(one), luminance(other)});
    return (more + 0.05) / (less + 0.05);
}

/// A colour that lets its ground through.
QColor over(const QColor &ground, const QColor &colour, double opacity)
{
    const auto mix = [opacity](float below, float above) { return below + (above - below) * float(opacity); };
    return QColor::fromRgbF(mix(ground.redF(), colour.redF()), mix(ground.greenF(), colour.greenF()),
                            mix(ground.blueF(), colour.blueF()));
}

constexpr double text = 4.5;
constexpr double mark = 3;

struct Pair
{
    const char *where;
    QColor front;
    QColor ground;
    double least;
};

using namespace tuppi::Colours;

const QList<Pair> &pairsOfTheWindow()
{
    static const QList<Pair> all{
        {"wordmark and Transcriber in the title strip", navy, titleStrip, text},
        {"title of the empty state", navy, white, text},
        {"line of the empty state", slate, white, text},
        {"title of a row", navy, white, text},
        {"detail of a row", slate, white, text},
        {"detail of a ready row", good, white, text},
        {"detail of a failed row", attention, white, text},
        {"summary in the footer", slate, white, text},
        {"icon of the footer and of rows", slate, white, mark},
        {"icon of the footer, pointed at", slate, over(white, slate, 0.09), mark},
        {"icon of the footer, pressed", slate, over(white, slate, 0.18), mark},
        {"outline of a row under way", accentBlue, white, mark},
        {"outline of a row under way, outside", accentBlue, window, mark},
        {"progress on its track", accentBlue, progressTrack, mark},
        {"edge of the drop area while files are over it", accentBlue, paleCard, mark},
        {"title of a menu", navy, window, text},
        {"chosen item of a menu", white, accentBlue, text},
        // Pills
        {"title of a main pill", white, accentBlue, text},
        {"title of a main pill, pointed at", white, accentBlue.darker(116), text},
        {"title of a main pill, pressed", white, over(white, accentBlue, Metrics::pressedOpacity), text},
        {"title of a pill", navy, white, text},
        {"title of a pill, pointed at", navy, paleCard, text},
        {"title of a destructive pill", attention, paleRed, text},
        {"title of a destructive pill, pointed at", attention, paleRed.darker(104), text},
        {"icon of the yellow pill", navy, paleYellow, mark},
        {"icon of the yellow pill, pointed at", navy, paleYellow.darker(104), mark},
        {"border of a pill on its own fill", pillBorder, white, mark},
        {"thumb of a scroll bar", pillBorder, white, mark},
        {"tool tip", navy, white, text},
    };
    return all;
}

const QList<Pair> &pairsOfTheOthers()
{
    static const QList<Pair> all{
        // Panel and sheets
        {"title and options of the panel", navy, white, text},
        {"section titles and hints of the panel", slate, white, text},
        {"files of the panel", navy, fileBox, text},
        {"length of the files", slate, fileBox, text},
        {"Add More", accentBlue, fileBox, text},
        {"Add More, pointed at", accentBlue, over(fileBox, accentBlue, 0.08), text},
        {"Add More, pressed", accentBlue, over(fileBox, accentBlue, 0.16), text},
        {"note of a model", navy, badge, text},
        {"title of the picked model", navy, paleCard, text},
        {"description of the picked model", slate, paleCard, text},
        {"border of the picked model", accentBlue, white, mark},
        {"panel while files are over it", navy, paleCard, text},
        {"hints of the panel while files are over it", slate, paleCard, text},
        {"warning sign of a sheet", attention, white, mark},
        {"edge of a sheet", pillBorder, white, mark},
        {"box to tick", pillBorder, white, mark},
        {"tick", white, accentBlue, mark},
        // Settings, About, Acknowledgements
        {"labels of the settings", navy, window, text},
        {"size, models, quiet checks", slate, window, text},
        {"hints of the settings, credits", hintText, window, text},
        {"status of the models", accentBlue, window, text},
        {"check that is in order", good, window, text},
        {"check that is not", attention, window, text},
        {"tab", slate, titleStrip, text},
        {"tab, pointed at", slate, paleCard, text},
        {"current tab", accentBlue, cardBorder, text},
        {"field, pop-up button", navy, white, text},
        {"pop-up button, pointed at", navy, paleCard, text},
        {"border of a field, of a pop-up button", pillBorder, white, mark},
        {"chevrons", accentBlue, white, mark},
        {"placeholder of a field", hintText, white, text},
        {"link of the acknowledgements", accentBlue, window, text},
    };
    return all;
}

QList<Pair> pairs()
{
    return pairsOfTheWindow() + pairsOfTheOthers();
}

/// Where a ring around a control can stand.
const QList<std::pair<const char *, QColor>> &groundsOfRings()
{
    static const QList<std::pair<const char *, QColor>> grounds{
        {"white", white}, {"window", window}, {"title strip", titleStrip}, {"card", paleCard}, {"current tab", cardBorder},
        {"file box", fileBox}, {"red pill", paleRed}, {"yellow pill", paleYellow}};
    return grounds;
}

/// What is given and stays, each with the ratio it has and why that can be borne.
struct Exception
{
    Pair pair;
    double ratio;
};

const QList<Exception> &exceptions()
{
    static const QList<Exception> all{
        // The title tells the card, the thick blue border the picked one.
        {{"border of a model that is not picked", cardBorder, white, mark}, 1.24},
        // Its text tells what it is for; while files are over it the edge is blue.
        {{"edge of the drop area at rest", dropDash, white, mark}, 1.93},
        // The ring shows the row that has the keyboard.
        {{"outline of the selected row", over(white, accentBlue, Metrics::selectedOpacity), white, mark}, 1.80},
        // The filled part and the text beside it tell how far the work is.
        {{"track of the progress bar", progressTrack, white, mark}, 1.24},
        // The fill of the control is within the border, and 3.07 : 1 from it.
        {{"border of a pill on the window", pillBorder, window, mark}, 2.88},
        // Lines that part and hold nothing.
        {{"line below the title strip", titleSeparator, titleStrip, mark}, 1.16},
    };
    return all;
}

TEST(Contrast, isAsWcagWantsItEverywhere)
{
    for (const Pair &pair : pairs())
        EXPECT_GE(contrast(pair.front, pair.ground), pair.least) << pair.where;
}

TEST(Contrast, theKeyboardsRingStandsOutFromEveryGround)
{
    for (const auto &[name, ground] : groundsOfRings())
        EXPECT_GE(contrast(focusRing, ground), mark) << name;
}

TEST(Contrast, whatIsGivenIsNoWorseThanKnown)
{
    for (const auto &[pair, ratio] : exceptions()) {
        EXPECT_LT(contrast(pair.front, pair.ground), pair.least) << pair.where << " is no exception";
        EXPECT_NEAR(contrast(pair.front, pair.ground), ratio, 0.005) << pair.where;
    }
}

TEST(Contrast, knowsTheExtremes)
{
    EXPECT_DOUBLE_EQ(contrast(Qt::black, Qt::white), 21);
    EXPECT_DOUBLE_EQ(contrast(QColor(1, 2, 3), QColor(1, 2, 3)), 1);
}

/// So that a new colour does not go unmeasured.
TEST(Contrast, everyColourOfTheTableIsMeasured)
{
    QFile table(QStringLiteral(TUPPI_COLOURS));
    ASSERT_TRUE(table.open(QIODevice::ReadOnly));
    QSet<QRgb> measured{focusRing.rgb()};
    for (const Pair &pair : pairs())
        measured += {pair.front.rgb(), pair.ground.rgb()};
    for (const Exception &exception : exceptions())
        measured += {exception.pair.front.rgb(), exception.pair.ground.rgb()};
    static const QRegularExpression row(u"QColor (\\w+)\\{(\\d+), (\\d+), (\\d+)\\}"_s);
    int rows = 0;
    for (auto found = row.globalMatch(QString::fromUtf8(table.readAll())); found.hasNext(); ++rows) {
        const QRegularExpressionMatch colour = found.next();
        const QColor value(colour.captured(2).toInt(), colour.captured(3).toInt(), colour.captured(4).toInt());
        EXPECT_TRUE(measured.contains(value.rgb())) << qPrintable(colour.captured(1));
    }
    EXPECT_GT(rows, 15);
}

} // namespace

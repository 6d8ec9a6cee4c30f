#include "terminal/FittedLine.h"

#include "support/Support.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

struct LineCase
{
    const char *name;
    QString title;
    int columns;
    QString expected;
};

class FittedLineTable : public testing::TestWithParam<LineCase>
{
};

TEST_P(FittedLineTable, Line)
{
    EXPECT_EQ(FittedLine(GetParam().title, u"10%"_s, GetParam().columns), GetParam().expected); // 5 columns with ": "
}

const LineCase lineCases[]{
    {"ThatFits", u"a long name"_s, 16, u"a long name: 10%"_s},
    {"ThatIsCut", u"a long name"_s, 15, u"a long na…: 10%"_s},
    {"InATerminalTooNarrow", u"a long name"_s, 3, u"a long …: 10%"_s},
    {"InATerminalOfAnyWidth", u"a long name"_s, std::numeric_limits<int>::max(), u"a long name: 10%"_s},
    {"OfChineseThatFits", u"会议记录一二"_s, 17, u"会议记录一二: 10%"_s},
    {"OfChineseThatIsCut", u"会议记录一二"_s, 16, u"会议记录一…: 10%"_s},
    {"OfChineseWhoseLastCharacterHasHalfTheRoom", u"会议记录一二"_s, 15, u"会议记录…: 10%"_s},
    {"OfEmojiThatIsCut", u"😀😀😀😀😀"_s, 14, u"😀😀😀😀…: 10%"_s},
    {"OfEmojiNeverHalved", u"😀😀😀😀😀"_s, 13, u"😀😀😀…: 10%"_s},
    {"OfAccentsThatFit", u"e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301"_s, 13,
     u"e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301: 10%"_s},
    {"OfAccentsThatIsCut", u"e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e"_s, 13,
     u"e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301…: 10%"_s},
};

INSTANTIATE_TEST_SUITE_P(FittedLine, FittedLineTable, testing::ValuesIn(lineCases), test::caseName);

} // namespace

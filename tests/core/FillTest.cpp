#include "settings/Fill.h"

#include "support/Support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct FillCase
{
    const char *name;
    QString format;
    QVariantList arguments;
    QString expected;
};

class FillTable : public testing::TestWithParam<FillCase>
{
};

TEST_P(FillTable, FillsAsExpected)
{
    EXPECT_EQ(tuppi::Fill(GetParam().format, GetParam().arguments), GetParam().expected);
}

const FillCase fillCases[]{
    {"Text", u"a %@ b"_s, {u"x"_s}, u"a x b"_s},
    {"TextOfANumber", u"%@"_s, {12}, u"12"_s},
    {"UnsignedNumber", u"%lu files"_s, {3}, u"3 files"_s},
    {"SignedNumber", u"%ld"_s, {-3}, u"-3"_s},
    {"PlainNumber", u"%d"_s, {7}, u"7"_s},
    {"NumberBeyond32Bits", u"%lu"_s, {qint64(5'000'000'000)}, u"5000000000"_s},
    {"NumericTextAsNumber", u"%lu"_s, {u"42"_s}, u"42"_s},
    {"NoDecimals", u"%.0f min"_s, {42.0}, u"42 min"_s},
    {"TwoDecimals", u"%.2f"_s, {1.005}, u"1.00"_s},
    {"DecimalsByDefault", u"%f"_s, {0.5}, u"0.500000"_s},
    {"WholeNumberAsDecimal", u"%.1f"_s, {3}, u"3.0"_s},
    {"InOrder", u"%@ %lu %@"_s, {u"a"_s, 2, u"c"_s}, u"a 2 c"_s},
    {"Positional", u"%2$@ of %1$@"_s, {u"a"_s, u"b"_s}, u"b of a"_s},
    {"PositionalNumber", u"%2$lu %1$.1f"_s, {1.26, 4}, u"4 1.3"_s},
    {"PositionTwice", u"%1$@%1$@"_s, {u"a"_s}, u"aa"_s},
    {"PositionalDoesNotConsume", u"%2$@ %@ %@"_s, {u"a"_s, u"b"_s}, u"b a b"_s},
    {"PercentSign", u"%lu %% of %%@"_s, {45}, u"45 % of %@"_s},
    {"MissingArgument", u"a %@ b %@ c"_s, {u"x"_s}, u"a x b  c"_s},
    {"NoArguments", u"%lu transcripts"_s, {}, u" transcripts"_s},
    {"TooManyArguments", u"only %@"_s, {u"x"_s, u"y"_s}, u"only x"_s},
    {"NoPlaceholder", u"nothing"_s, {u"x"_s}, u"nothing"_s},
    {"TextWhereANumberIsAsked", u"%lu and %.0f"_s, {u"many"_s, u"more"_s}, u"many and more"_s},
    {"PositionZero", u"[%0$@]"_s, {u"a"_s}, u"[]"_s},
    {"PositionBeyondTheEnd", u"[%9$@]"_s, {u"a"_s}, u"[]"_s},
    {"PositionTooLargeToRead", u"[%99999999999$@]"_s, {u"a"_s}, u"[]"_s},
    {"UnknownKindStays", u"%q %s"_s, {u"a"_s}, u"%q %s"_s},
    {"LonePercentAtTheEnd", u"100 %"_s, {u"a"_s}, u"100 %"_s},
    {"ArgumentIsNotFilledAgain", u"%@ %@"_s, {u"%@"_s, u"%lu"_s}, u"%@ %lu"_s},
    {"ArgumentBeforeNonLatinText", u"%@ — готово"_s, {u"Ω"_s}, u"Ω — готово"_s},
    {"Empty", u""_s, {u"a"_s}, u""_s},
};

INSTANTIATE_TEST_SUITE_P(Fill, FillTable, testing::ValuesIn(fillCases), tuppi::test::caseName);

TEST(OneLine, HasNoBreaks)
{
    EXPECT_EQ(OneLine(u"Minutes"_s), u"Minutes"_s);
    EXPECT_EQ(OneLine(u"  Minutes  of May "_s), u"Minutes  of May"_s);
    EXPECT_EQ(OneLine(u"Minutes\r\nof\u2028the\u2029May\tmeeting\u0085\u0007\n"_s), u"Minutes of the May meeting"_s);
    EXPECT_EQ(OneLine(u"May\u001b[2Kday"_s), u"May [2Kday"_s);
    EXPECT_EQ(OneLine(u" \n\t "_s), QString());
    EXPECT_EQ(OneLine(u"Київ 😀 — «так»"_s), u"Київ 😀 — «так»"_s);
}

} // namespace

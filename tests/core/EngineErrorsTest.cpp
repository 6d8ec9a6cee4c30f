#include "engine/EngineErrors.h"

#include "support/Support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

TEST(EngineErrors, PrefixesGoWhereverTheyStand)
{
    EXPECT_EQ(WithoutErrorPrefixes(u"Error: no room\n"_s), u"no room\n"_s);
    EXPECT_EQ(WithoutErrorPrefixes(u"Помилка: a\nError: b"_s), u"a\nb"_s);
    EXPECT_EQ(ModelFailureDetail(u"Error: no such model\n"_s), u"no such model"_s);
    EXPECT_EQ(ModelFailureDetail(u" \n"_s), QString());
}

TEST(FailureDetail, IsTheLastLineWithoutPrefixesAndBlanks)
{
    EXPECT_EQ(FailureDetail(u"Error: no such file\n"_s), u"no such file"_s);
    EXPECT_EQ(FailureDetail(u"Помилка: немає файлу"_s), u"немає файлу"_s);
    EXPECT_EQ(FailureDetail(u"Traceback\n  line 1\nError: the last one  \n\n"_s), u"the last one"_s);
    EXPECT_EQ(FailureDetail(u"Error: Помилка: both"_s), u"both"_s);
    EXPECT_EQ(FailureDetail(u"ErrПомилка: or: joined"_s), u"joined"_s);
    EXPECT_EQ(FailureDetail(u"wrapped Error: in the middle"_s), u"wrapped in the middle"_s);
    EXPECT_EQ(FailureDetail(u"Error:no blank"_s), u"Error:no blank"_s);
    EXPECT_EQ(FailureDetail(u"no prefix"_s), u"no prefix"_s);
}

TEST(FailureDetail, EmptyTextStaysEmpty)
{
    EXPECT_EQ(FailureDetail({}), u""_s);
    EXPECT_EQ(FailureDetail(u" \n\n"_s), u""_s);
    EXPECT_EQ(FailureDetail(u"Error: \n"_s), u""_s);
}

} // namespace

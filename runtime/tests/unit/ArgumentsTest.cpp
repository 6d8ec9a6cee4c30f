#include "core/Arguments.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

const Syntax syntax{u"thing WORD… [--flag] [--name=NAME] [--engine ENGINE]",
                    1,
                    2,
                    {{u"--flag"}, {u"--name", Option::Value}, {u"--engine", Option::SeparateValue}}};

QString refusal(const QStringList &given)
{
    try {
        readArguments(syntax, given);
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.exitStatus(), 2);
        EXPECT_TRUE(failure.sentence().contains(u"Usage: call thing"));
        return failure.sentence();
    }
    return u"accepted"_s;
}

} // namespace

TEST(Arguments, takesWordsAndOptionsInAnyOrder)
{
    const Arguments read =
        readArguments(syntax, {u"--flag"_s, u"a"_s, u"--engine"_s, u"auto"_s, u"--name=x y"_s});
    EXPECT_EQ(read.words, QStringList{u"a"_s});
    EXPECT_TRUE(read.has(u"--flag"));
    EXPECT_EQ(read.value(u"--engine"), u"auto"_s);
    EXPECT_EQ(read.value(u"--name"), u"x y"_s);
    EXPECT_EQ(read.value(u"--other", u"else"_s), u"else"_s);
}

TEST(Arguments, aValueMayBeEmptyOrHoldAnEqualsSign)
{
    EXPECT_EQ(readArguments(syntax, {u"a"_s, u"--name="_s}).value(u"--name", u"else"_s), QString());
    EXPECT_EQ(readArguments(syntax, {u"a"_s, u"--name=b=c"_s}).value(u"--name"), u"b=c"_s);
    EXPECT_EQ(readArguments(syntax, {u"a"_s, u"--engine=b"_s}).value(u"--engine"), u"b"_s);
}

TEST(Arguments, nothingIsAnOptionAfterALoneDash)
{
    const QStringList words{u"--flag"_s, u"--"_s};
    EXPECT_EQ(readArguments(syntax, QStringList{u"--"_s} + words).words, words);
}

TEST(Arguments, refusesWhatItDoesNotTake)
{
    EXPECT_TRUE(refusal({}).startsWith(u"Something is missing."));
    EXPECT_TRUE(refusal({u"a"_s, u"b"_s, u"c"_s}).startsWith(u"“c” is one too many."));
    EXPECT_TRUE(refusal({u"a"_s, u"--other"_s}).startsWith(u"“--other” is not an option here."));
    EXPECT_TRUE(refusal({u"a"_s, u"--flag=1"_s}).startsWith(u"“--flag” takes no value."));
    EXPECT_TRUE(refusal({u"a"_s, u"--flag"_s, u"--flag"_s}).startsWith(u"“--flag” was given twice."));
    EXPECT_TRUE(refusal({u"a"_s, u"--name"_s}).startsWith(u"“--name” takes a value after “=”."));
    EXPECT_TRUE(refusal({u"a"_s, u"--engine"_s}).startsWith(u"“--engine” takes a value."));
}

} // namespace engine

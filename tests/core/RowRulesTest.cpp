#include "actions/RowRules.h"

#include "support/Support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

TEST(IsRowCommandAllowed, TakesPausedAsATruthValue)
{
    for (const QByteArray paused : {"true", "1"}) {
        const QJsonObject row = test::object(R"({"id":"a","status":"cleaning","paused":)" + paused + "}");
        EXPECT_TRUE(IsRowCommandAllowed(row, u"resumeRow"_s)) << paused.toStdString();
        EXPECT_FALSE(IsRowCommandAllowed(row, u"pauseRow"_s)) << paused.toStdString();
    }
    for (const QByteArray paused : {"false", "0", "null"}) {
        const QJsonObject row = test::object(R"({"id":"a","status":"cleaning","paused":)" + paused + "}");
        EXPECT_FALSE(IsRowCommandAllowed(row, u"resumeRow"_s)) << paused.toStdString();
        EXPECT_TRUE(IsRowCommandAllowed(row, u"pauseRow"_s)) << paused.toStdString();
    }
}

} // namespace

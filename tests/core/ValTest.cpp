#include "settings/Val.h"

#include "support/Support.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(Val, JsonNullIsAbsent)
{
    EXPECT_TRUE(tuppi::Val(QJsonValue(QJsonValue::Null)).isUndefined());
    EXPECT_TRUE(tuppi::Val(QJsonValue(QJsonValue::Undefined)).isUndefined());
}

TEST(Val, OtherJsonValuesAreUnchanged)
{
    for (const QJsonValue &value : {QJsonValue(false), QJsonValue(0), QJsonValue(u""_s), QJsonValue(QJsonArray())})
        EXPECT_EQ(tuppi::Val(value), value);
}

TEST(Val, StoredNullIsAbsent)
{
    EXPECT_FALSE(tuppi::Val(QVariant::fromValue(nullptr)).isValid());
    EXPECT_FALSE(tuppi::Val(QVariant()).isValid());
}

TEST(Val, OtherStoredValuesAreUnchanged)
{
    for (const QVariant &value : {QVariant(false), QVariant(0), QVariant(u""_s), QVariant(QVariantList())})
        EXPECT_EQ(tuppi::Val(value), value);
}

} // namespace

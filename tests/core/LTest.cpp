#include "settings/L.h"

#include "support/Support.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

/// A table read from the given JSON and installed while the test runs.
class LTest : public testing::Test
{
protected:
    bool load(const QByteArray &json)
    {
        test::writeFile(m_folder.filePath(u"table.json"_s), json);
        const bool loaded = m_table.loadTable(m_folder.filePath(u"table.json"_s));
        QCoreApplication::installTranslator(&m_table);
        return loaded;
    }
    void TearDown() override { QCoreApplication::removeTranslator(&m_table); }

    QTemporaryDir m_folder;
    LocalTable m_table;
};

TEST_F(LTest, EmptyTextIsReturnedWithoutALookup)
{
    ASSERT_TRUE(load(R"({"":"something"})"));
    EXPECT_EQ(L(u""_s), u""_s);
}

TEST_F(LTest, TextMissingFromTheTableIsUnchanged)
{
    ASSERT_TRUE(load(R"({"Paused":"Призупинено"})"));
    EXPECT_EQ(L(u"No transcriptions"_s), u"No transcriptions"_s);
}

TEST_F(LTest, TextWithAnEntryIsTranslated)
{
    ASSERT_TRUE(load(R"({"Paused":"Призупинено"})"));
    EXPECT_EQ(L(u"Paused"_s), u"Призупинено"_s);
}

TEST_F(LTest, KeysOutsideAsciiAreFound)
{
    ASSERT_TRUE(load(R"({"Could not start “%@”":"Не вдалося почати «%@»"})"));
    EXPECT_EQ(L(u"Could not start “%@”"_s), u"Не вдалося почати «%@»"_s);
}

TEST_F(LTest, WithoutATableEveryTextIsUnchanged)
{
    EXPECT_EQ(L(u"Paused"_s), u"Paused"_s);
    EXPECT_EQ(L(u"Could not start “%@”"_s), u"Could not start “%@”"_s);
}

TEST_F(LTest, EmptyTranslationReadsAsTheEnglishText)
{
    ASSERT_TRUE(load(R"({"Paused":"","Preparing…":"Готуємо…"})"));
    EXPECT_EQ(L(u"Paused"_s), u"Paused"_s);
    EXPECT_EQ(L(u"Preparing…"_s), u"Готуємо…"_s);
}

TEST_F(LTest, ValuesThatAreNoTextAreLeftOut)
{
    ASSERT_TRUE(load(R"({"Paused":5,"Starting…":["x"],"Add":"Додати"})"));
    EXPECT_EQ(L(u"Paused"_s), u"Paused"_s);
    EXPECT_EQ(m_table.texts(), (QHash<QString, QString>{{u"Add"_s, u"Додати"_s}}));
}

TEST_F(LTest, AnotherContextIsNotLookedUp)
{
    ASSERT_TRUE(load(R"({"Paused":"Призупинено"})"));
    EXPECT_EQ(QCoreApplication::translate("Dialog", "Paused"), u"Paused"_s);
}

TEST_F(LTest, StandardButtonsAndCommandsOfQtAreNamed)
{
    ASSERT_TRUE(load(R"({"Cancel":"रद्द करें","Copy":"कॉपी करें"})"));
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), u"रद्द करें"_s);
    EXPECT_EQ(QCoreApplication::translate("QLineEdit", "&Copy"), u"कॉपी करें"_s);
    EXPECT_EQ(QCoreApplication::translate("QFileDialog", "Look in:"), u"Look in:"_s);
}

TEST_F(LTest, MissingFileGivesAnEmptyTable)
{
    EXPECT_FALSE(m_table.loadTable(m_folder.filePath(u"none.json"_s)));
    EXPECT_TRUE(m_table.isEmpty());
}

TEST_F(LTest, FileThatIsNoObjectGivesAnEmptyTable)
{
    EXPECT_FALSE(load(R"(["Paused"])"));
    EXPECT_TRUE(m_table.isEmpty());
    EXPECT_FALSE(load("{\"Paused\":"));
    EXPECT_TRUE(m_table.isEmpty());
}

TEST_F(LTest, LoadingAgainReplacesTheTable)
{
    ASSERT_TRUE(load(R"({"Paused":"Призупинено"})"));
    ASSERT_TRUE(load(R"({"Add":"Додати"})"));
    EXPECT_EQ(L(u"Paused"_s), u"Paused"_s);
    EXPECT_EQ(L(u"Add"_s), u"Додати"_s);
}

TEST(ChosenInterfaceLanguage, IsTheFirstElementOfAList)
{
    EXPECT_EQ(ChosenInterfaceLanguage(QVariantList{u"uk"_s}), u"uk"_s);
    EXPECT_EQ(ChosenInterfaceLanguage(QVariantList{u"es"_s, u"uk"_s}), u"es"_s);
}

TEST(ChosenInterfaceLanguage, ValueThatIsNoListReadsAsAuto)
{
    EXPECT_EQ(ChosenInterfaceLanguage(u"uk"_s), u"auto"_s);
    EXPECT_EQ(ChosenInterfaceLanguage(QVariantMap{{u"0"_s, u"uk"_s}}), u"auto"_s);
    EXPECT_EQ(ChosenInterfaceLanguage(5), u"auto"_s);
    EXPECT_EQ(ChosenInterfaceLanguage(QVariant()), u"auto"_s);
}

TEST(ChosenInterfaceLanguage, EmptyListReadsAsAuto)
{
    EXPECT_EQ(ChosenInterfaceLanguage(QVariantList()), u"auto"_s);
}

struct LanguageCase
{
    const char *name;
    QString chosen;
    QStringList system;
    QString expected;
};

class LanguageInUse : public testing::TestWithParam<LanguageCase>
{
};

TEST_P(LanguageInUse, IsChosenThenSystemThenEnglish)
{
    EXPECT_EQ(InterfaceLanguageInUse(GetParam().chosen, GetParam().system), GetParam().expected);
}

const LanguageCase languageCases[]{
    {"ChosenWins", u"uk"_s, {u"es-ES"_s}, u"uk"_s},
    {"ChosenEnglishWins", u"en"_s, {u"uk-UA"_s}, u"en"_s},
    {"AutoFollowsTheSystem", u"auto"_s, {u"es-MX"_s, u"en"_s}, u"es"_s},
    {"ChosenWithoutATableFollowsTheSystem", u"fr"_s, {u"hi-IN"_s}, u"hi"_s},
    {"FirstSystemLanguageWithATable", u"auto"_s, {u"fr-FR"_s, u"pl"_s, u"ar-EG"_s, u"uk"_s}, u"ar"_s},
    {"NothingKnownIsEnglish", u"auto"_s, {u"fr-FR"_s, u"de"_s}, u"en"_s},
    {"NoSystemLanguageIsEnglish", u"auto"_s, {}, u"en"_s},
    {"TheCLocaleIsEnglish", u"auto"_s, {u"C"_s}, u"en"_s},
    {"SimplifiedByScript", u"auto"_s, {u"zh-Hans-CN"_s}, u"zh-Hans"_s},
    {"SimplifiedByRegion", u"auto"_s, {u"zh-CN"_s, u"en"_s}, u"zh-Hans"_s},
    {"SimplifiedInSingapore", u"auto"_s, {u"zh-SG"_s, u"zh-Hans-SG"_s}, u"zh-Hans"_s},
    {"ChineseWithoutARegionIsSimplified", u"auto"_s, {u"zh"_s}, u"zh-Hans"_s},
    {"TraditionalByScriptGoesOn", u"auto"_s, {u"zh-Hant-TW"_s, u"es"_s}, u"es"_s},
    {"TraditionalByRegionGoesOn", u"auto"_s, {u"zh-TW"_s, u"zh-HK"_s, u"zh-MO"_s, u"hi"_s}, u"hi"_s},
    {"TraditionalAloneIsEnglish", u"auto"_s, {u"zh-TW"_s, u"zh-Hant-TW"_s}, u"en"_s},
};

INSTANTIATE_TEST_SUITE_P(L, LanguageInUse, testing::ValuesIn(languageCases), test::caseName);

TEST(InterfaceLanguageCodes, AreTheSixInMenuOrder)
{
    EXPECT_EQ(InterfaceLanguageCodes(), (QStringList{u"en"_s, u"uk"_s, u"zh-Hans"_s, u"hi"_s, u"es"_s, u"ar"_s}));
}

} // namespace

// The interface in each of its languages, with the tables that the program ships.

#include "intake/Languages.h"
#include "intake/SetupTexts.h"
#include "list/Describe.h"
#include "settings/L.h"

#include "support/Support.h"

#include <QCollator>
#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

struct SpokenCase
{
    const char *name;
    QString code;
    QString done;         ///< the line of a finished transcript
    QString working;      ///< of one under way
    QStringList summaries; ///< with 0, 1, 2 and 5 transcripts
    QString length;       ///< of 3 hours and 2 minutes
    QStringList languages; ///< the first of the sorted ones
    QString size;         ///< of 2,097,152 bytes
};

/// The program as it is after a start in that language on a system that speaks none of them.
class Spoken : public testing::TestWithParam<SpokenCase>
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(LoadInterfaceTexts(m_table, GetParam().code), GetParam().code);
        QCoreApplication::installTranslator(&m_table);
        QLocale::setDefault(InterfaceLocale(GetParam().code, QLocale::c()));
    }
    void TearDown() override
    {
        QCoreApplication::removeTranslator(&m_table);
        QLocale::setDefault(m_former);
    }

    const QLocale m_former;
    LocalTable m_table;
};

TEST_P(Spoken, DoneLineKeepsDateAndLengthReadable)
{
    const QJsonObject row = test::object(
        R"({"id":"a","status":"ready","recorded_at":"2025-03-14T10:22:33","duration_seconds":2520,"engine":"whisper"})");
    EXPECT_EQ(Describe(row, std::nullopt, {}).text, GetParam().done);
}

TEST_P(Spoken, WorkCarriesTheEnginesProgress)
{
    const QJsonObject row = test::object(R"({"id":"a","status":"transcribing"})");
    EXPECT_EQ(Describe(row, test::object(R"({"id":"a","progress":"12/40"})"), {}).text, GetParam().working);
}

TEST_P(Spoken, SummaryReadsRightWithEveryNumber)
{
    QStringList summaries;
    for (const int count : {0, 1, 2, 5}) {
        SummaryInput input;
        input.loaded = true;
        input.rowCount = 9; // others have failed
        input.counts.ready = count;
        summaries.append(SummaryLine(input));
    }
    EXPECT_EQ(summaries, GetParam().summaries);
}

TEST_P(Spoken, LengthHasItsOwnUnits)
{
    EXPECT_EQ(LengthText(3 * 3600 + 2 * 60), GetParam().length);
}

TEST_P(Spoken, LanguagesStandInItsOrder)
{
    const QList<LanguageRow> rows = Languages(QLocale());
    QStringList names;
    for (const LanguageRow &row : rows.sliced(1))
        names.append(row.name);
    EXPECT_EQ(names.first(GetParam().languages.size()), GetParam().languages);
    EXPECT_TRUE(std::is_sorted(names.cbegin(), names.cend(), QCollator(QLocale())));
    EXPECT_EQ(QSet<QString>(names.cbegin(), names.cend()).size(), LanguageTable().size());
}

TEST_P(Spoken, SizesAreWrittenInItsWay)
{
    EXPECT_EQ(QLocale().formattedDataSize(2'097'152, 1, QLocale::DataSizeSIFormat), GetParam().size);
}

const SpokenCase spokenCases[]{
    {"English", u"en"_s, u"Done · 2025-03-14 10:22 · 42 min · Whisper Turbo"_s, u"Listening and writing down… 12/40"_s,
     {u"0 transcripts"_s, u"1 transcript"_s, u"2 transcripts"_s, u"5 transcripts"_s}, u"3h 2m"_s,
     {u"Arabic"_s, u"Bulgarian"_s, u"Chinese"_s}, u"2.1 MB"_s},
    {"Ukrainian", u"uk"_s, u"Готово · 2025-03-14 10:22 · 42 хв · Whisper Turbo"_s, u"Слухаємо й записуємо… 12/40"_s,
     {u"Транскриптів: 0"_s, u"1 транскрипт"_s, u"Транскриптів: 2"_s, u"Транскриптів: 5"_s}, u"3 год 2 хв"_s,
     {u"Англійська"_s, u"Арабська"_s, u"Болгарська"_s, u"Гінді"_s, u"Грецька"_s, u"Данська"_s, u"Іврит"_s}, u"2,1 МБ"_s},
    {"Chinese", u"zh-Hans"_s, u"完成 · 2025-03-14 10:22 · 42 分钟 · Whisper Turbo"_s, u"正在听写… 12/40"_s,
     {u"0 份文字稿"_s, u"1 份文字稿"_s, u"2 份文字稿"_s, u"5 份文字稿"_s}, u"3小时2分钟"_s,
     {u"阿拉伯语"_s, u"保加利亚语"_s, u"波兰语"_s}, u"2.1 MB"_s},
    {"Hindi", u"hi"_s, u"पूरा · 2025-03-14 10:22 · 42 मिनट · Whisper Turbo"_s, u"सुनकर लिखा जा रहा है… 12/40"_s,
     {u"0 ट्रांसक्रिप्ट"_s, u"1 ट्रांसक्रिप्ट"_s, u"2 ट्रांसक्रिप्ट"_s, u"5 ट्रांसक्रिप्ट"_s}, u"3 घं॰ 2 मि॰"_s, {u"अंग्रेज़ी"_s, u"अरबी"_s, u"इतालवी"_s}, u"2.1 MB"_s},
    {"Spanish", u"es"_s, u"Lista · 2025-03-14 10:22 · 42 min · Whisper Turbo"_s, u"Escuchando y escribiendo… 12/40"_s,
     {u"0 transcripciones"_s, u"1 transcripción"_s, u"2 transcripciones"_s, u"5 transcripciones"_s}, u"3 h 2 min"_s,
     {u"Alemán"_s, u"Árabe"_s, u"Búlgaro"_s, u"Checo"_s}, u"2,1 MB"_s},
    {"Arabic", u"ar"_s, u"تم · \u2068""2025-03-14 10:22\u2069 · 42 د · Whisper Turbo"_s, u"جارٍ الاستماع والكتابة… 12/40"_s,
     {u"التفريغات: 0"_s, u"تفريغ واحد"_s, u"التفريغات: 2"_s, u"التفريغات: 5"_s}, u"3 س 2 د"_s,
     {u"الإسبانية"_s, u"الألمانية"_s, u"الإنجليزية"_s}, u"2.1 م.ب"_s},
};

INSTANTIATE_TEST_SUITE_P(InterfaceLanguage, Spoken, testing::ValuesIn(spokenCases), test::caseName);

TEST(InterfaceLanguages, AreShownByTheirOwnNames)
{
    QStringList shown;
    for (const QString &code : InterfaceLanguageCodes())
        shown.append(code + u' ' + InterfaceLanguageName(code));
    EXPECT_EQ(shown, (QStringList{u"en English"_s, u"uk Українська"_s, u"zh-Hans 中文（简体）"_s, u"hi हिन्दी"_s, u"es Español"_s,
                                  u"ar العربية"_s}));
    EXPECT_EQ(InterfaceLanguageName(u"fr"_s), QString());
    EXPECT_EQ(InterfaceLanguageName(u"auto"_s), QString());
}

TEST(LoadInterfaceTexts, EveryLanguageButEnglishHasTexts)
{
    for (const QString &code : InterfaceLanguageCodes()) {
        LocalTable table;
        EXPECT_EQ(LoadInterfaceTexts(table, code), code);
        EXPECT_EQ(table.isEmpty(), code == u"en") << code.toStdString();
    }
}

TEST(LoadInterfaceTexts, MissingOrBrokenTableIsEnglish)
{
    const QTemporaryDir folder;
    test::writeFile(folder.filePath(u"es.json"_s), R"({"Paused":"En )");
    test::writeFile(folder.filePath(u"hi.json"_s), R"(["Paused"])");
    test::writeFile(folder.filePath(u"ar.json"_s), "");
    test::writeFile(folder.filePath(u"zh-Hans.json"_s), R"({"Paused":"已暂停"})");
    for (const QString &code : {u"uk"_s, u"es"_s, u"hi"_s, u"ar"_s}) {
        LocalTable table;
        EXPECT_EQ(LoadInterfaceTexts(table, code, folder.path()), u"en") << code.toStdString();
        EXPECT_TRUE(table.isEmpty());
    }
    LocalTable table;
    EXPECT_EQ(LoadInterfaceTexts(table, u"zh-Hans"_s, folder.path()), u"zh-Hans");
    EXPECT_EQ(table.texts().value(u"Paused"_s), u"已暂停"_s);
}

struct LocaleCase
{
    const char *name;
    QString language;
    QString system;
    QString expected;
};

class InterfaceLocaleTable : public testing::TestWithParam<LocaleCase>
{
};

TEST_P(InterfaceLocaleTable, FollowsTheLanguageInUse)
{
    const QLocale locale = InterfaceLocale(GetParam().language, QLocale(GetParam().system));
    EXPECT_EQ(locale.name(), GetParam().expected);
    EXPECT_EQ(locale.zeroDigit(), u"0");
}

const LocaleCase localeCases[]{
    {"SystemThatSpeaksAnotherLanguage", u"uk"_s, u"es_MX"_s, u"uk_UA"_s},
    {"SystemWithoutALanguage", u"es"_s, u"C"_s, u"es_ES"_s},
    {"RegionOfTheSystem", u"es"_s, u"es_MX"_s, u"es_MX"_s},
    {"EnglishRegionOfTheSystem", u"en"_s, u"en_GB"_s, u"en_GB"_s},
    {"ChineseRegionOfTheSystem", u"zh-Hans"_s, u"zh_SG"_s, u"zh_SG"_s},
    {"AnotherScriptIsAnotherLanguage", u"zh-Hans"_s, u"zh_TW"_s, u"zh_CN"_s},
    {"Hindi", u"hi"_s, u"hi_IN"_s, u"hi_IN"_s},
    {"Arabic", u"ar"_s, u"C"_s, u"ar_AE"_s},
    {"ArabicRegionWithTheSameDigits", u"ar"_s, u"ar_MA"_s, u"ar_MA"_s},
    {"ArabicRegionWithOtherDigits", u"ar"_s, u"ar_EG"_s, u"ar_AE"_s},
};

INSTANTIATE_TEST_SUITE_P(InterfaceLanguage, InterfaceLocaleTable, testing::ValuesIn(localeCases), test::caseName);

} // namespace

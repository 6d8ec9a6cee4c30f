// The batch behind the New Transcription panel: what enters it, how it is listed, how long it is.

#include "Translated.h"

#include "intake/AcceptedFiles.h"
#include "intake/SetupFiles.h"
#include "intake/SetupTexts.h"

#include <QSet>
#include <QTest>

#include <cmath>
#include <limits>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

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

} // namespace

class SetupFilesTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
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
        for (const QString &other : {u"*.m3u"_s, u"*.pls"_s, u"*.txt"_s, u"*.png"_s, u"*"_s})
            QVERIFY2(!patterns.contains(other), qPrintable(other));
        QCOMPARE(patterns.size(), QSet<QString>(patterns.cbegin(), patterns.cend()).size());
    }
};

QTEST_GUILESS_MAIN(SetupFilesTest)
#include "SetupFilesTest.moc"

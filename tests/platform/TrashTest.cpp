// The desktop's trash: what is moved, what stays and why, on this drive and on others.

#include "platform/Trash.h"

#include "support/Drive.h"
#include "support/Eventually.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <algorithm>
#include <memory>

#include <sys/stat.h>
#include <unistd.h>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

constexpr uid_t nobody = 65534;

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// An administrator may do everything: what is forbidden shows only as somebody else.
class AsSomebody
{
public:
    AsSomebody()
    {
        if (::geteuid() == 0 && ::seteuid(nobody) != 0)
            qFatal("cannot become somebody else");
    }
    ~AsSomebody()
    {
        if (::getuid() == 0 && ::seteuid(0) != 0)
            qFatal("cannot come back");
    }
    Q_DISABLE_COPY(AsSomebody)
};

} // namespace

class TrashTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aFolderIsMovedWhole();
    void whatIsThereIsMoved_data();
    void whatIsThereIsMoved();
    void whatIsNotThereIsGone_data();
    void whatIsNotThereIsGone();
    void aSecondOneOfTheSameNameIsKeptBesideTheFirst();
    void aNameTooLongForTheTrashStays_data();
    void aNameTooLongForTheTrashStays();
    void whatMayNotBeTakenAwayStays_data();
    void whatMayNotBeTakenAwayStays();
    void withoutAPlaceForTheTrashItStays_data();
    void withoutAPlaceForTheTrashItStays();
    void anotherDriveUsesItsOwnTrash();
    void anotherDriveWithoutATrashKeepsIt_data();
    void anotherDriveWithoutATrashKeepsIt();
    void aTrashThatMayNotBeWrittenTakesNothing();
    void whatAllShareOnADriveHasAPlaceForEach();
    void allAreTriedInTheirOrder();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    QString trash() const { return path(u"home/.local/share/Trash"_s); }
    QStringList trashed() const
    {
        return QDir(trash() + u"/files"_s).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }
    void makeFolder(const QString &name) const
    {
        QVERIFY(QDir().mkpath(path(name + u"/Technical files"_s)));
        write(name + u"/Transcript.txt"_s, name.toUtf8());
        write(name + u"/Technical files/viewer.html"_s, "page");
    }
    void write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }
    void allow(const QString &name, mode_t mode) const
    {
        QCOMPARE(::chmod(QFile::encodeName(path(name)).constData(), mode), 0);
    }
    /// Hands everything in the test's folder to the one that AsSomebody is.
    void giveAway() const
    {
        if (::geteuid() != 0)
            return;
        QCOMPARE(QProcess::execute(u"chown"_s, {u"-R"_s, QString::number(nobody), m_folder->path()}), 0);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_homeBefore;
    QString m_workingBefore;
};

void TrashTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    QVERIFY(QDir().mkpath(path(u"home"_s)));
    QVERIFY(QDir().mkpath(path(u"working"_s)));
    m_homeBefore = qgetenv("HOME");
    m_workingBefore = QDir::currentPath();
    qputenv("HOME", QFile::encodeName(path(u"home"_s)));
    qunsetenv("XDG_DATA_HOME");
    // Where Qt puts what it finds no trash for.
    QVERIFY(QDir::setCurrent(path(u"working"_s)));
}

void TrashTest::cleanup()
{
    QCOMPARE(QDir(path(u"working"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    QDir::setCurrent(m_workingBefore);
    qputenv("HOME", m_homeBefore);
    m_folder.reset();
}

void TrashTest::aFolderIsMovedWhole()
{
    QVERIFY(!QFileInfo::exists(path(u"home/.local"_s)));
    makeFolder(u"Дзвінок 50%"_s);
    QCOMPARE(MoveToTrash(path(u"Дзвінок 50%"_s)), (TrashResult{TrashOutcome::Moved, {}}));
    QVERIFY(!QFileInfo::exists(path(u"Дзвінок 50%"_s)));
    QCOMPARE(trashed(), QStringList{u"Дзвінок 50%"_s});
    QCOMPARE(contentsOf(trash() + u"/files/Дзвінок 50%/Technical files/viewer.html"_s), "page");
    const QByteArray told = contentsOf(trash() + u"/info/Дзвінок 50%.trashinfo"_s);
    const QByteArray origin = QUrl::toPercentEncoding(path(u"Дзвінок 50%"_s), "/");
    QVERIFY2(told.contains("Path=" + origin), told.constData());
    QVERIFY(told.contains("DeletionDate="));
    QCOMPARE(QFileInfo(trash()).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

void TrashTest::whatIsThereIsMoved_data()
{
    QTest::addColumn<QString>("dataHome");
    QTest::addColumn<QString>("target");
    QTest::newRow("the usual data home") << QString() << u"plain"_s;
    QTest::newRow("a data home elsewhere, not made yet") << u"data/of mine"_s << u"plain"_s;
    QTest::newRow("a link goes and not what it leads to") << QString() << u"link"_s;
}

void TrashTest::whatIsThereIsMoved()
{
    QFETCH(const QString, dataHome);
    QFETCH(const QString, target);
    makeFolder(u"plain"_s);
    QVERIFY(QFile::link(path(u"plain"_s), path(u"link"_s)));
    if (!dataHome.isEmpty())
        qputenv("XDG_DATA_HOME", QFile::encodeName(path(dataHome)));
    QCOMPARE(MoveToTrash(path(target)), (TrashResult{TrashOutcome::Moved, {}}));
    qunsetenv("XDG_DATA_HOME");
    const QFileInfo left(path(target));
    QVERIFY(!left.exists() && !left.isSymLink());
    QCOMPARE(contentsOf(path(u"plain/Transcript.txt"_s)), target == "plain"_L1 ? QByteArray() : "plain"_ba);
    const QString place = dataHome.isEmpty() ? trash() : path(dataHome + u"/Trash"_s);
    const QFileInfo moved(place + u"/files/"_s + target);
    QVERIFY(moved.exists() || moved.isSymLink());
}

void TrashTest::whatIsNotThereIsGone_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("nothing at that path") << u"/nowhere/to be found"_s;
    QTest::newRow("no path") << QString();
    QTest::newRow("under a file") << u"/proc/version/folder"_s;
}

void TrashTest::whatIsNotThereIsGone()
{
    QFETCH(const QString, target);
    QCOMPARE(MoveToTrash(target), (TrashResult{TrashOutcome::Gone, {}}));
    QVERIFY(!QFileInfo::exists(trash()));
}

void TrashTest::aSecondOneOfTheSameNameIsKeptBesideTheFirst()
{
    makeFolder(u"a/Talk"_s);
    makeFolder(u"b/Talk"_s);
    QCOMPARE(MoveToTrash(path(u"a/Talk"_s)).outcome, TrashOutcome::Moved);
    QCOMPARE(MoveToTrash(path(u"b/Talk"_s)).outcome, TrashOutcome::Moved);
    QList<QByteArray> found;
    for (const QString &name : trashed())
        found.append(contentsOf(trash() + u"/files/"_s + name + u"/Transcript.txt"_s));
    found.removeAll("");
    std::sort(found.begin(), found.end());
    QCOMPARE(found, (QList<QByteArray>{"a/Talk", "b/Talk"}));
}

void TrashTest::aNameTooLongForTheTrashStays_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("moved");
    QTest::newRow("a second one with its number") << 240 << 2;
    QTest::newRow("a second one without room for a number") << 241 << 1;
    QTest::newRow("the longest with its note") << 245 << 1;
    QTest::newRow("without room for a note") << 246 << 0;
}

void TrashTest::aNameTooLongForTheTrashStays()
{
    QFETCH(const int, bytes);
    QFETCH(const int, moved);
    const QString name = QString(bytes / 2, u'ї') + QString(bytes % 2, u'1');
    for (int number = 1; number <= 2; ++number) {
        makeFolder(name);
        const TrashResult result = MoveToTrash(path(name));
        QCOMPARE(result.outcome, number <= moved ? TrashOutcome::Moved : TrashOutcome::Failed);
        QCOMPARE(result.systemError.isEmpty(), number <= moved);
        QCOMPARE(QFileInfo::exists(path(name + u"/Transcript.txt"_s)), number > moved);
        QCOMPARE(trashed().size(), std::min(number, moved));
    }
}

void TrashTest::whatMayNotBeTakenAwayStays_data()
{
    QTest::addColumn<QString>("closed");
    QTest::newRow("out of a folder that may not be changed") << u"library"_s;
    QTest::newRow("a folder that may not be changed itself") << u"library/Talk"_s;
}

void TrashTest::whatMayNotBeTakenAwayStays()
{
    QFETCH(const QString, closed);
    makeFolder(u"library/Talk"_s);
    giveAway();
    allow(closed, 0555);
    TrashResult result;
    {
        const AsSomebody somebody;
        result = MoveToTrash(path(u"library/Talk"_s));
    }
    allow(closed, 0755);
    QCOMPARE(result.outcome, TrashOutcome::Forbidden);
    QCOMPARE(contentsOf(path(u"library/Talk/Transcript.txt"_s)), "library/Talk");
    QCOMPARE(trashed(), QStringList());
}

void TrashTest::withoutAPlaceForTheTrashItStays_data()
{
    QTest::addColumn<QString>("inTheWay");
    QTest::newRow("a file where the trash would be") << u"home/.local/share/Trash"_s;
    QTest::newRow("a file where the data home would be") << u"home/.local/share"_s;
    QTest::newRow("a file where its files would be") << u"home/.local/share/Trash/files"_s;
    QTest::newRow("a file where their origins would be") << u"home/.local/share/Trash/info"_s;
}

void TrashTest::withoutAPlaceForTheTrashItStays()
{
    QFETCH(const QString, inTheWay);
    makeFolder(u"Talk"_s);
    QVERIFY(QDir().mkpath(QFileInfo(path(inTheWay)).path()));
    write(inTheWay, "in the way");
    QCOMPARE(MoveToTrash(path(u"Talk"_s)).outcome, TrashOutcome::NoTrash);
    QCOMPARE(contentsOf(path(u"Talk/Transcript.txt"_s)), "Talk");
    QCOMPARE(contentsOf(path(u"Talk/Technical files/viewer.html"_s)), "page");
    QCOMPARE(contentsOf(path(inTheWay)), "in the way");
}

void TrashTest::anotherDriveUsesItsOwnTrash()
{
    const test::Drive drive(path(u"drive"_s), 256);
    if (!drive.isMounted())
        QSKIP("only an administrator can mount a drive");
    makeFolder(u"drive/Talk"_s);
    QCOMPARE(MoveToTrash(path(u"drive/Talk"_s)), (TrashResult{TrashOutcome::Moved, {}}));
    QVERIFY(!QFileInfo::exists(path(u"drive/Talk"_s)));
    const QString own = path(u"drive/.Trash-%1"_s.arg(::geteuid()));
    QCOMPARE(contentsOf(own + u"/files/Talk/Transcript.txt"_s), "drive/Talk");
    QVERIFY(contentsOf(own + u"/info/Talk.trashinfo"_s).contains("Talk"));
    QCOMPARE(QFileInfo(own).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    QCOMPARE(trashed(), QStringList());
}

void TrashTest::anotherDriveWithoutATrashKeepsIt_data()
{
    const QString trash = u"drive/.Trash-%1"_s.arg(::geteuid());
    QTest::addColumn<QString>("inTheWay");
    QTest::newRow("a file where the trash would be") << trash;
    QTest::newRow("a file where its files would be") << trash + u"/files"_s;
    QTest::newRow("a file where their origins would be") << trash + u"/info"_s;
    QTest::newRow("a file for each person's trash") << u"drive/.Trash/%1"_s.arg(::geteuid());
}

void TrashTest::anotherDriveWithoutATrashKeepsIt()
{
    QFETCH(const QString, inTheWay);
    const test::Drive drive(path(u"drive"_s), 256);
    if (!drive.isMounted())
        QSKIP("only an administrator can mount a drive");
    makeFolder(u"drive/Talk"_s);
    QVERIFY(QDir().mkpath(QFileInfo(path(inTheWay)).path()));
    write(inTheWay, "in the way");
    if (inTheWay.startsWith("drive/.Trash/"_L1))
        allow(u"drive/.Trash"_s, 01777);
    QCOMPARE(MoveToTrash(path(u"drive/Talk"_s)).outcome, TrashOutcome::NoTrash);
    QCOMPARE(contentsOf(path(u"drive/Talk/Transcript.txt"_s)), "drive/Talk");
    QCOMPARE(trashed(), QStringList());
}

void TrashTest::aTrashThatMayNotBeWrittenTakesNothing()
{
    makeFolder(u"Talk"_s);
    QVERIFY(QDir().mkpath(trash() + u"/files"_s) && QDir().mkpath(trash() + u"/info"_s));
    giveAway();
    allow(u"home/.local/share/Trash/info"_s, 0555);
    TrashResult result;
    {
        const AsSomebody somebody;
        result = MoveToTrash(path(u"Talk"_s));
    }
    allow(u"home/.local/share/Trash/info"_s, 0755);
    QCOMPARE(result.outcome, TrashOutcome::NoTrash);
    QCOMPARE(contentsOf(path(u"Talk/Transcript.txt"_s)), "Talk");
    QCOMPARE(trashed(), QStringList());
}

void TrashTest::whatAllShareOnADriveHasAPlaceForEach()
{
    const test::Drive drive(path(u"drive"_s), 256);
    if (!drive.isMounted())
        QSKIP("only an administrator can mount a drive");
    makeFolder(u"drive/Talk"_s);
    QVERIFY(QDir().mkpath(path(u"drive/.Trash"_s)));
    allow(u"drive/.Trash"_s, 01777);
    QCOMPARE(MoveToTrash(path(u"drive/Talk"_s)), (TrashResult{TrashOutcome::Moved, {}}));
    const QString own = u"drive/.Trash/%1"_s.arg(::geteuid());
    QCOMPARE(contentsOf(path(own + u"/files/Talk/Transcript.txt"_s)), "drive/Talk");
    QVERIFY(!QFileInfo::exists(path(u"drive/.Trash-%1"_s.arg(::geteuid()))));
}

void TrashTest::allAreTriedInTheirOrder()
{
    makeFolder(u"one"_s);
    makeFolder(u"two"_s);
    QList<TrashOutcome> outcomes;
    MoveAllToTrash({path(u"one"_s), path(u"gone"_s), path(u"two"_s)}, this, [&](const QList<TrashResult> &results) {
        for (const TrashResult &result : results)
            outcomes.append(result.outcome);
    });
    EVENTUALLY_COMPARE(outcomes, (QList<TrashOutcome>{TrashOutcome::Moved, TrashOutcome::Gone, TrashOutcome::Moved}));
    QCOMPARE(trashed(), (QStringList{u"one"_s, u"two"_s}));
}

QTEST_GUILESS_MAIN(TrashTest)

#include "TrashTest.moc"

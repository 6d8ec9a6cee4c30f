#include "platform/FolderSize.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <csignal>

using namespace Qt::StringLiterals;
using tuppi::FolderSize;

/// The measurement with a program of the test's own, which notes its process id and its arguments.
class FolderSizeTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
    }

    void measuresWithDu()
    {
        QFile file(m_folder->filePath(u"file"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(100'000, 'x'));
        file.close();
        FolderSize size;
        QSignalSpy measured(&size, &FolderSize::measured);
        size.measure(m_folder->path());
        QVERIFY(measured.wait(limit));
        QCOMPARE(measured.first().at(0).toString(), m_folder->path());
        QVERIFY(measured.first().at(1).toByteArray().split('\t').first().toInt() >= 98);
    }

    void aMissingProgramGivesAnEmptyReport()
    {
        FolderSize size(m_folder->filePath(u"no such program"_s));
        QSignalSpy measured(&size, &FolderSize::measured);
        size.measure(u"/a"_s);
        QVERIFY(measured.wait(limit));
        QCOMPARE(measured.first().at(1).toByteArray(), QByteArray());
        size.measure(u"/b"_s);
        QVERIFY(measured.wait(limit));
        QCOMPARE(measured.at(1).at(0).toString(), u"/b"_s);
    }

    void hasItsArguments()
    {
        FolderSize size(program("printf '%s|' \"$@\""));
        QSignalSpy measured(&size, &FolderSize::measured);
        size.measure(u"/a b/ї"_s);
        QVERIFY(measured.wait(limit));
        QCOMPARE(QString::fromUtf8(measured.first().at(1).toByteArray()), u"-sk|/a b/ї|"_s);
    }

    void oneThatHangsGivesWayToTheLatestPath()
    {
        FolderSize size(program("[ \"$2\" = /quick ] && echo 5 || { trap '' TERM; exec tail -f /dev/null; }"));
        QSignalSpy measured(&size, &FolderSize::measured);
        size.measure(u"/slow"_s);
        QTRY_COMPARE_WITH_TIMEOUT(started().size(), 1, limit);
        size.measure(u"/slow"_s);
        size.measure(u"/other"_s);
        size.measure(u"/quick"_s);
        QVERIFY(measured.wait(limit));
        QCOMPARE(measured.size(), 1);
        QCOMPARE(measured.first().at(0).toString(), u"/quick"_s);
        QCOMPARE(measured.first().at(1).toByteArray(), QByteArray("5\n"));
        const QList<pid_t> pids = started(); // one that is overtaken at once may not have come to note its id
        QTRY_VERIFY_WITH_TIMEOUT(std::none_of(pids.begin(), pids.end(), isRunning), limit);
        QVERIFY(pids.size() == 2 || pids.size() == 3);
    }

    void theNextOneDoesNotWaitForTheEndOfOneThatIsStuck()
    {
        FolderSize size(program("exec tail -f /dev/null"));
        size.measure(u"/dead"_s);
        QTRY_COMPARE_WITH_TIMEOUT(started().size(), 1, limit);
        size.measure(u"/alive"_s);
        // Nobody has been told yet that the first has ended: for the object it is stuck.
        QElapsedTimer since;
        since.start();
        while (started().size() < 2 && since.elapsed() < limit)
            QThread::yieldCurrentThread();
        QCOMPARE(started().size(), 2);
    }

    void whatAStoppedOneSaysIsNotTakenForItsFolder()
    {
        const QByteArray first = QFile::encodeName(m_folder->filePath(u"first"_s));
        FolderSize size(program("mkdir '" + first + "' || { echo 5; exit; }\nexec tail -f /dev/null"));
        QSignalSpy measured(&size, &FolderSize::measured);
        size.measure(u"/a"_s);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m_folder->filePath(u"first"_s)), limit);
        size.measure(u"/b"_s);
        size.measure(u"/a"_s);
        QVERIFY(measured.wait(limit));
        QCOMPARE(measured.first().at(0).toString(), u"/a"_s);
        QCOMPARE(measured.first().at(1).toByteArray(), QByteArray("5\n"));
    }

    void noneOutlivesTheObject()
    {
        {
            FolderSize size(program("trap '' TERM; exec tail -f /dev/null"));
            size.measure(u"/slow"_s);
            QTRY_COMPARE_WITH_TIMEOUT(started().size(), 1, limit);
        }
        QTRY_VERIFY_WITH_TIMEOUT(!isRunning(started().first()), limit);
    }

private:
    static constexpr int limit = 60'000;

    QString program(const QByteArray &script)
    {
        QFile file(m_folder->filePath(u"du"_s));
        if (file.open(QIODevice::WriteOnly)) {
            file.write("#!/bin/sh\necho $$ >>'" + QFile::encodeName(m_folder->filePath(u"started"_s)) + "'\n" + script + '\n');
            file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        return file.fileName();
    }
    QList<pid_t> started() const
    {
        QFile file(m_folder->filePath(u"started"_s));
        QList<pid_t> pids;
        if (file.open(QIODevice::ReadOnly)) {
            for (const QByteArray &line : file.readAll().split('\n')) {
                if (!line.isEmpty())
                    pids.append(line.toInt());
            }
        }
        return pids;
    }
    static bool isRunning(pid_t pid) { return ::kill(pid, 0) == 0; }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(FolderSizeTest)
#include "FolderSizeTest.moc"

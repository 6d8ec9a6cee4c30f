#include "platform/Notifier.h"

#include "support/Eventually.h"

#include <QDBusConnectionInterface>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace tuppi;
using namespace Qt::StringLiterals;

/// With a real notification daemon, on the bus and the screen of with-desktop.
class NotificationDaemonTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QProcess m_daemon;

    static QByteArray control(const QStringList &arguments)
    {
        QProcess process;
        process.start(u"dunstctl"_s, arguments);
        process.waitForFinished();
        return process.readAllStandardOutput().trimmed();
    }
    static bool shows(int count)
    {
        return QTest::qWaitFor([&] { return control({u"count"_s, u"displayed"_s}).toInt() == count; }, test::patience);
    }
    /// What has been shown and is closed, latest first: "title: body".
    static QStringList history()
    {
        const QJsonObject json = QJsonDocument::fromJson(control({u"history"_s})).object();
        QStringList notices;
        for (const QJsonValue &notice : json[u"data"_s][0].toArray())
            notices.append(notice[u"summary"_s][u"data"_s].toString() + u": "_s +
                           notice[u"body"_s][u"data"_s].toString());
        return notices;
    }
    /// Clicks the one notice that is shown, and closes it.
    static bool clickTells(QSignalSpy &clicked, const QString &identifier)
    {
        clicked.clear();
        if (!shows(1))
            return false;
        control({u"action"_s, u"0"_s});
        const bool told = QTest::qWaitFor([&] { return clicked.size() == 1; }, test::patience);
        control({u"close-all"_s});
        return told && clicked.at(0).at(0).toString() == identifier && shows(0);
    }
    bool startDaemon()
    {
        m_daemon.start(u"dunst"_s, {u"-conf"_s, m_dir.filePath(u"dunstrc"_s)});
        const QDBusConnectionInterface *bus = QDBusConnection::sessionBus().interface();
        return QTest::qWaitFor([&] { return bus->isServiceRegistered(u"org.freedesktop.Notifications"_s).value(); },
                               test::patience);
    }
    void stopDaemon()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(qEnvironmentVariableIsSet("TUPPI_DESKTOP"), "to be run by with-desktop");
        QFile config(m_dir.filePath(u"dunstrc"_s));
        QVERIFY(config.open(QIODevice::WriteOnly));
        config.write("[global]\nhistory_length = 20\nidle_threshold = 0\n[urgency_normal]\ntimeout = 0\n");
        config.close();
        QVERIFY(startDaemon());
    }
    void cleanupTestCase() { stopDaemon(); }

    void postedReplacedAndClicked()
    {
        Notifier notifier(QDBusConnection::sessionBus(), u"Open"_s);
        QSignalSpy clicked(&notifier, &Notifier::clicked);
        notifier.post(u"tr-1"_s, u"Transcription failed"_s, u"Talk"_s);
        notifier.post(u"tr-1"_s, u"Transcript ready"_s, u"Talk <1> & more"_s);
        notifier.post(u"tr-2"_s, u"Transcript ready"_s, u"Another"_s);
        QVERIFY(shows(2));
        control({u"close-all"_s});
        QVERIFY(shows(0));
        // Two and not three: the first one's place was taken. Its body is shown as it stands.
        const QStringList shown = history();
        QCOMPARE(shown.size(), 2);
        QVERIFY2(shown.contains(u"Transcript ready: Another"_s), qPrintable(shown.join(u'\n')));
        QVERIFY2(shown.contains(u"Transcript ready: Talk <1> & more"_s), qPrintable(shown.join(u'\n')));

        notifier.post(u"tr-2"_s, u"Transcript ready"_s, u"Another"_s);
        QVERIFY(clickTells(clicked, u"tr-2"_s));
    }

    void theDaemonStartsAnew()
    {
        Notifier notifier(QDBusConnection::sessionBus(), u"Open"_s);
        QSignalSpy clicked(&notifier, &Notifier::clicked);
        notifier.post(u"tr-1"_s, u"Transcript ready"_s, u"Talk"_s);
        QVERIFY(shows(1));
        stopDaemon();
        QVERIFY(startDaemon());
        QVERIFY(shows(0));
        notifier.post(u"tr-1"_s, u"Transcript ready"_s, u"Talk"_s);
        QVERIFY(clickTells(clicked, u"tr-1"_s));
    }
};

QTEST_GUILESS_MAIN(NotificationDaemonTest)

#include "NotificationDaemonTest.moc"

#include "PrivateBus.h"
#include "platform/ApplicationId.h"

#include "support/Eventually.h"

#include <QProcess>
#include <QTest>

#include <csignal>
#include <memory>
#include <vector>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

constexpr int longLimit = 60000;
constexpr int shortLimit = 300;

/// One process of the application.
class Instance
{
public:
    Instance(const QString &bus, const QString &mode, int limit, const QStringList &files = {},
             const QStringList &variables = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString &name : {u"XDG_ACTIVATION_TOKEN"_s, u"DESKTOP_STARTUP_ID"_s})
            environment.remove(name);
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, bus);
        for (const QString &variable : variables)
            environment.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
        m_process.setProcessEnvironment(environment);
        m_process.start(QStringLiteral(INSTANCE_PROGRAM), QStringList{mode, QString::number(limit)} + files);
    }
    ~Instance()
    {
        resume();
        m_process.kill();
        m_process.waitForFinished();
    }
    Q_DISABLE_COPY(Instance)

    QStringList lines()
    {
        m_output += m_process.readAllStandardOutput();
        return QString::fromUtf8(m_output).split(u'\n', Qt::SkipEmptyParts);
    }
    QString role() { return lines().value(0); }
    QStringList heard() { return lines().mid(1); }
    QByteArray complaints() { return m_process.readAllStandardError(); }
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    void goOn() { m_process.write("\n"); }
    void quit() { m_process.closeWriteChannel(); }
    void stop() { ::kill(pid_t(m_process.processId()), SIGSTOP); }
    void resume()
    {
        if (m_process.processId() > 0)
            ::kill(pid_t(m_process.processId()), SIGCONT);
    }

private:
    QProcess m_process;
    QByteArray m_output;
};

} // namespace

class SingleInstanceTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<PrivateBus> m_bus;

    std::unique_ptr<Instance> run(const QString &mode = u"run"_s, int limit = longLimit,
                                  const QStringList &files = {}, const QStringList &variables = {}) const
    {
        return std::make_unique<Instance>(m_bus->address(), mode, limit, files, variables);
    }

private Q_SLOTS:
    void init()
    {
        m_bus = std::make_unique<PrivateBus>();
        QVERIFY(m_bus->isRunning());
    }
    void cleanup() { m_bus.reset(); }

    void filesGoToTheFirst()
    {
        const auto first = run();
        EVENTUALLY_COMPARE(first->role(), u"primary"_s);
        const QStringList files{u"/tmp/one two.mp3"_s, u"/tmp/a%20b#c?.wav"_s, u"/tmp/line\nbreak.m4a"_s,
                                u"/tmp/مقابلة.ogg"_s, u"/tmp/-x; $(true) 'q' \"Q\".mp3"_s};
        const auto second = run(u"run"_s, longLimit, files, {u"XDG_ACTIVATION_TOKEN=token-1"_s});
        EVENTUALLY_COMPARE(second->role(), u"handed over"_s);
        EVENTUALLY_VERIFY(!second->isRunning());
        EVENTUALLY_COMPARE(first->heard().value(6), u"opened 5"_s);
        QCOMPARE(first->heard().constFirst(), u"opened 0"_s);
        QVERIFY(first->heard().filter(u"activated"_s).isEmpty()); // what is no recording brings no window forward
        for (qsizetype i = 0; i < files.size(); ++i) {
            const QStringList words = first->heard().value(i + 1).split(u' ');
            QCOMPARE(words.value(0), u"open"_s);
            QCOMPARE(words.value(2), u"token-1"_s);
            QCOMPARE(QUrl::fromEncoded(words.value(1).toLatin1()).toLocalFile(), files.at(i));
        }
        QCOMPARE(first->complaints() + second->complaints(), QByteArray());
    }

    void withoutFilesTheWindowComesForward_data()
    {
        QTest::addColumn<QStringList>("variables");
        QTest::addColumn<QString>("token");
        QTest::newRow("no token") << QStringList() << QString();
        QTest::newRow("Wayland") << QStringList{u"XDG_ACTIVATION_TOKEN=abc"_s} << u"abc"_s;
        QTest::newRow("X11") << QStringList{u"DESKTOP_STARTUP_ID=x_TIME12"_s} << u"x_TIME12"_s;
        QTest::newRow("both") << QStringList{u"DESKTOP_STARTUP_ID=x_TIME12"_s, u"XDG_ACTIVATION_TOKEN=abc"_s}
                              << u"abc"_s;
    }

    void withoutFilesTheWindowComesForward()
    {
        QFETCH(const QStringList, variables);
        QFETCH(const QString, token);
        const auto first = run();
        EVENTUALLY_COMPARE(first->role(), u"primary"_s);
        const auto second = run(u"run"_s, longLimit, {}, variables);
        EVENTUALLY_COMPARE(second->role(), u"handed over"_s);
        EVENTUALLY_COMPARE(first->heard(), QStringList{u"activated %1"_s.arg(token)});
    }

    void manyAtOnce()
    {
        std::vector<std::unique_ptr<Instance>> instances;
        for (int i = 0; i < 8; ++i)
            instances.push_back(run(u"run"_s, longLimit, {u"/tmp/%1.mp3"_s.arg(i)}));
        for (const auto &instance : instances)
            QTRY_VERIFY_WITH_TIMEOUT(!instance->role().isEmpty(), longLimit);
        QStringList roles;
        Instance *primary = nullptr;
        for (const auto &instance : instances) {
            roles.append(instance->role());
            if (instance->role() == u"primary"_s)
                primary = instance.get();
        }
        QCOMPARE(roles.count(u"primary"_s), 1);
        QCOMPARE(roles.count(u"handed over"_s), 7);
        EVENTUALLY_COMPARE(primary->heard().count(u"opened 1"_s), 7);
    }

    void theNameIsFreeAfterTheFirst()
    {
        const auto first = run();
        EVENTUALLY_COMPARE(first->role(), u"primary"_s);
        first->quit();
        EVENTUALLY_VERIFY(!first->isRunning());
        const auto second = run();
        EVENTUALLY_COMPARE(second->role(), u"primary"_s);
    }

    void anOwnerThatIsSlowIsWaitedFor()
    {
        const auto first = run(u"deaf"_s);
        EVENTUALLY_COMPARE(first->role(), u"primary"_s);
        const auto second = run(u"run"_s, longLimit, {u"/tmp/a.mp3"_s});
        first->goOn();
        EVENTUALLY_COMPARE(second->role(), u"handed over"_s);
        EVENTUALLY_COMPARE(first->heard().value(2), u"opened 1"_s);
    }

    void anOwnerThatHangs_data()
    {
        QTest::addColumn<bool>("stopped");
        QTest::newRow("busy") << false;
        QTest::newRow("stopped") << true;
    }

    void anOwnerThatHangs()
    {
        QFETCH(const bool, stopped);
        const auto first = run(stopped ? u"run"_s : u"deaf"_s);
        EVENTUALLY_COMPARE(first->role(), u"primary"_s);
        if (stopped)
            first->stop();
        const auto second = run(u"run"_s, shortLimit, {u"/tmp/a.mp3"_s});
        EVENTUALLY_COMPARE(second->role(), u"alone"_s);
        // The files stay with the process that runs alone: the other one, awake again, never gets them.
        first->resume();
        first->goOn();
        const auto third = run(u"run"_s, longLimit, {u"/tmp/b.mp3"_s});
        EVENTUALLY_COMPARE(third->role(), u"handed over"_s);
        EVENTUALLY_VERIFY(first->heard().contains(u"opened 1"_s));
        QVERIFY(!first->heard().join(u' ').contains(u"a.mp3"_s));
        QVERIFY(first->heard().join(u' ').contains(u"b.mp3"_s));
    }

    void anOwnerThatDiesWhileItIsAsked()
    {
        const auto first = run(u"die"_s);
        EVENTUALLY_COMPARE(first->role(), u"primary"_s);
        const auto second = run(u"run"_s, longLimit, {u"/tmp/a.mp3"_s});
        EVENTUALLY_COMPARE(second->role(), u"primary"_s);
        EVENTUALLY_VERIFY(!first->isRunning());
    }

    void anOwnerThatKnowsNoneOfThis()
    {
        MockService owner(m_bus->connection(), QString(applicationId), u"/somewhere/else"_s);
        QVERIFY(owner.takeName());
        const auto instance = run(u"run"_s, longLimit, {u"/tmp/a.mp3"_s});
        EVENTUALLY_COMPARE(instance->role(), u"alone"_s);
        QCOMPARE(instance->complaints(), QByteArray());
    }

    void withoutABus_data()
    {
        QTest::addColumn<QString>("address");
        QTest::newRow("nobody there") << u"unix:path=/nonexistent/bus"_s;
        QTest::newRow("not an address") << u"nonsense"_s;
    }

    void withoutABus()
    {
        QFETCH(const QString, address);
        Instance instance(address, u"run"_s, longLimit, {u"/tmp/a.mp3"_s});
        EVENTUALLY_COMPARE(instance.role(), u"alone"_s);
        instance.quit();
        EVENTUALLY_VERIFY(!instance.isRunning());
        QCOMPARE(instance.complaints(), QByteArray());
    }

    void outlivesTheBus()
    {
        const auto first = run();
        EVENTUALLY_COMPARE(first->role(), u"primary"_s);
        m_bus.reset();
        first->quit();
        EVENTUALLY_VERIFY(!first->isRunning());
        QCOMPARE(first->complaints(), QByteArray());
    }

    void theDesktopAsks()
    {
        const auto first = run();
        EVENTUALLY_COMPARE(first->role(), u"primary"_s);
        const QDBusConnection desktop = m_bus->connection();
        const auto ask = [&](const QString &method, const QVariantList &arguments) {
            QDBusMessage call = QDBusMessage::createMethodCall(applicationId, applicationObjectPath,
                                                               u"org.freedesktop.Application"_s, method);
            call.setArguments(arguments);
            return desktop.call(call).type();
        };
        const QVariantMap data{
            {u"activation-token"_s, u"t"_s}, {u"desktop-startup-id"_s, u"s"_s}, {u"other"_s, 5}};
        QCOMPARE(ask(u"Activate"_s, {data}), QDBusMessage::ReplyMessage);
        QCOMPARE(ask(u"ActivateAction"_s, {u"new"_s, QVariantList{1}, data}), QDBusMessage::ReplyMessage);
        QCOMPARE(ask(u"Open"_s, {QStringList{u"file:///a%20b.mp3"_s, u"https://example.org/x.mp3"_s,
                                             u"relative.mp3"_s, u"file://%zz"_s, QString()},
                                 data}),
                 QDBusMessage::ReplyMessage);
        QCOMPARE(ask(u"Open"_s, {QStringList(), QVariantMap()}), QDBusMessage::ReplyMessage);
        QCOMPARE(ask(u"Open"_s, {u"file:///a.mp3"_s}), QDBusMessage::ErrorMessage);
        const QStringList expected{u"activated t"_s,
                                   u"activated t"_s,
                                   u"open file:///a%20b.mp3 t"_s,
                                   u"open https://example.org/x.mp3 t"_s,
                                   u"opened 2"_s,
                                   u"opened 0"_s};
        EVENTUALLY_COMPARE(first->heard(), expected);
    }
};

QTEST_GUILESS_MAIN(SingleInstanceTest)

#include "SingleInstanceTest.moc"

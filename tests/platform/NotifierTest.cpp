#include "platform/Notifier.h"
#include "PrivateBus.h"

#include "support/Eventually.h"

#include <QDBusArgument>
#include <QRegularExpression>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <memory>
#include <thread>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

const QString service = u"org.freedesktop.Notifications"_s;
const QString path = u"/org/freedesktop/Notifications"_s;

/// The arguments of a call that posts a notice.
struct Posted
{
    explicit Posted(const QDBusMessage &message)
        : call(message)
    {
    }
    QString application() const { return call.arguments().value(0).toString(); }
    uint replaces() const { return call.arguments().value(1).toUInt(); }
    QString icon() const { return call.arguments().value(2).toString(); }
    QString title() const { return call.arguments().value(3).toString(); }
    QString body() const { return call.arguments().value(4).toString(); }
    QStringList actions() const { return call.arguments().value(5).toStringList(); }
    QVariantMap hints() const { return qdbus_cast<QVariantMap>(call.arguments().value(6)); }
    int time() const { return call.arguments().value(7).toInt(); }

    QDBusMessage call;
};

} // namespace

class NotifierTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<MockService> m_service;
    std::unique_ptr<QDBusConnection> m_app;
    std::unique_ptr<Notifier> m_notifier;
    QStringList m_capabilities;
    uint m_number = 0;

    void serve(MockService &mock)
    {
        mock.answer = [&](const QDBusMessage &call) {
            if (call.member() == u"GetCapabilities"_s)
                mock.send(call.createReply(m_capabilities));
            else
                mock.send(call.createReply(Posted(call).replaces() ? Posted(call).replaces() : ++m_number));
        };
    }
    static QList<Posted> posted(const MockService &mock)
    {
        QList<Posted> result;
        for (const QDBusMessage &call : mock.calls) {
            if (call.member() == u"Notify"_s)
                result.append(Posted(call));
        }
        return result;
    }
    QList<Posted> posted() const { return posted(*m_service); }
    bool havePosted(int count)
    {
        return QTest::qWaitFor([&] { return posted().size() == count; }, test::patience);
    }
    void makeNotifier(int limit = serviceLimit)
    {
        m_notifier = std::make_unique<Notifier>(*m_app, u"Öffnen"_s, limit);
    }
    static void tell(MockService &mock, const QString &name, uint number, const QVariant &value)
    {
        QDBusMessage signal = QDBusMessage::createSignal(path, service, name);
        signal << number << value;
        mock.send(signal);
    }
    /// Everything that was sent to the notifier before has reached it.
    void settle()
    {
        const int count = int(posted().size());
        m_notifier->post(u"settle-%1"_s.arg(count), {}, {});
        QVERIFY(havePosted(count + 1));
        // Its reply comes behind whatever was sent before it.
        m_notifier->post(u"settled-%1"_s.arg(count), {}, {});
        QVERIFY(havePosted(count + 2));
    }

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        m_bus = std::make_unique<PrivateBus>();
        QVERIFY(m_bus->isRunning());
        m_service = std::make_unique<MockService>(m_bus->connection(), service, path);
        m_app = std::make_unique<QDBusConnection>(m_bus->connection());
        m_capabilities = {u"actions"_s, u"body"_s, u"body-markup"_s};
        m_number = 40;
        serve(*m_service);
    }

    void cleanup()
    {
        m_notifier.reset();
        m_service.reset();
        m_app.reset();
        m_bus.reset();
    }

    void aNoticeIsPosted()
    {
        QVERIFY(m_service->takeName());
        makeNotifier();
        m_notifier->post(u"tr-1"_s, u"Transcript ready"_s, u"Talk"_s);
        QVERIFY(havePosted(1));
        QCOMPARE(m_service->calls.constFirst().member(), u"GetCapabilities"_s);
        const Posted notice = posted().constFirst();
        QCOMPARE(notice.call.signature(), u"susssasa{sv}i"_s);
        QCOMPARE(notice.application(), u"Tuppi Transcriber"_s);
        QCOMPARE(notice.replaces(), 0u);
        QCOMPARE(notice.icon(), u"tuppi-transcriber"_s);
        QCOMPARE(notice.title(), u"Transcript ready"_s);
        QCOMPARE(notice.body(), u"Talk"_s);
        QCOMPARE(notice.actions(), (QStringList{u"default"_s, u"Öffnen"_s, u"open"_s, u"Öffnen"_s}));
        QCOMPARE(notice.hints().value(u"desktop-entry"_s).toString(), u"org.tuppi.Transcriber"_s);
        QVERIFY(!notice.hints().value(u"sound-name"_s).toString().isEmpty());
        QCOMPARE(notice.time(), -1);
    }

    void capabilitiesDecide_data()
    {
        QTest::addColumn<QStringList>("capabilities");
        QTest::addColumn<QString>("body");
        QTest::addColumn<qsizetype>("actions");
        const QString plain = u"<b>A & \"B\"</b>"_s, escaped = u"&lt;b&gt;A &amp; &quot;B&quot;&lt;/b&gt;"_s;
        QTest::newRow("none") << QStringList{} << plain << qsizetype(0);
        QTest::newRow("actions") << QStringList{u"actions"_s} << plain << qsizetype(4);
        QTest::newRow("markup") << QStringList{u"body"_s, u"body-markup"_s} << escaped << qsizetype(0);
        QTest::newRow("both") << QStringList{u"body-markup"_s, u"actions"_s} << escaped << qsizetype(4);
    }

    void capabilitiesDecide()
    {
        QFETCH(const QStringList, capabilities);
        m_capabilities = capabilities;
        QVERIFY(m_service->takeName());
        makeNotifier();
        m_notifier->post(u"tr-1"_s, u"<i>Ready</i>"_s, u"<b>A & \"B\"</b>"_s);
        QVERIFY(havePosted(1));
        QTEST(posted().constFirst().body(), "body");
        QTEST(posted().constFirst().actions().size(), "actions");
        QCOMPARE(posted().constFirst().title(), u"<i>Ready</i>"_s); // never markup
    }

    void theSameIdentifierTakesItsPlace()
    {
        QVERIFY(m_service->takeName());
        makeNotifier();
        // At once, before the number of the first is known.
        m_notifier->post(u"tr-1"_s, u"Failed"_s, {});
        m_notifier->post(u"tr-1"_s, u"Ready"_s, {});
        m_notifier->post(u"tr-2"_s, u"Ready"_s, {});
        m_notifier->post(u"tr-1"_s, u"Failed"_s, {});
        QVERIFY(havePosted(4));
        QCOMPARE(posted().at(0).replaces(), 0u);
        QCOMPARE(posted().at(1).replaces(), 41u);
        QCOMPARE(posted().at(2).replaces(), 0u);
        QCOMPARE(posted().at(3).replaces(), 41u);
    }

    void aClickIsTold_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("withToken");
        QTest::newRow("notice") << u"default"_s << false;
        QTest::newRow("button") << u"open"_s << false;
        QTest::newRow("notice, with a token") << u"default"_s << true;
    }

    void aClickIsTold()
    {
        QFETCH(const QString, action);
        QFETCH(const bool, withToken);
        QVERIFY(m_service->takeName());
        makeNotifier();
        QSignalSpy clicked(m_notifier.get(), &Notifier::clicked);
        m_notifier->post(u"tr-1"_s, u"A"_s, {});
        m_notifier->post(u"tr-2"_s, u"B"_s, {});
        settle();
        if (withToken)
            tell(*m_service, u"ActivationToken"_s, 42, u"token-7"_s);
        tell(*m_service, u"ActionInvoked"_s, 42, action);
        EVENTUALLY_COMPARE(clicked.size(), 1);
        QCOMPARE(clicked.at(0), (QVariantList{u"tr-2"_s, withToken ? u"token-7"_s : QString()}));
        // The token is spent; the notice can be clicked again.
        tell(*m_service, u"ActionInvoked"_s, 42, action);
        EVENTUALLY_COMPARE(clicked.size(), 2);
        QCOMPARE(clicked.at(1), (QVariantList{u"tr-2"_s, QString()}));
    }

    void whatIsNoClickOnOurs()
    {
        QVERIFY(m_service->takeName());
        makeNotifier();
        QSignalSpy clicked(m_notifier.get(), &Notifier::clicked);
        m_notifier->post(u"tr-1"_s, u"A"_s, {});
        m_notifier->post(u"tr-2"_s, u"B"_s, {});
        settle();
        MockService stranger(m_bus->connection(), u"org.example.Stranger"_s, u"/"_s);
        tell(stranger, u"ActivationToken"_s, 41, u"theirs"_s);
        tell(stranger, u"ActionInvoked"_s, 41, u"default"_s);
        tell(*m_service, u"ActionInvoked"_s, 7, u"default"_s);        // another program's notice
        tell(*m_service, u"ActionInvoked"_s, 41, u"inline-reply"_s);  // no action of ours
        tell(*m_service, u"NotificationClosed"_s, 41, 2u);
        tell(*m_service, u"ActionInvoked"_s, 41, u"default"_s);       // its number may be another's by now
        QDBusMessage broken = QDBusMessage::createSignal(path, service, u"ActionInvoked"_s);
        m_service->send(broken);
        settle();
        tell(*m_service, u"ActionInvoked"_s, 42, u"default"_s);
        EVENTUALLY_COMPARE(clicked.size(), 1);
        QCOMPARE(clicked.at(0), (QVariantList{u"tr-2"_s, QString()}));
        // What was closed takes no place any more.
        const int count = int(posted().size());
        m_notifier->post(u"tr-1"_s, u"A"_s, {});
        QVERIFY(havePosted(count + 1));
        QCOMPARE(posted().last().replaces(), 0u);
    }

    void theServiceGoesAndAnotherComes()
    {
        QVERIFY(m_service->takeName());
        makeNotifier();
        QSignalSpy clicked(m_notifier.get(), &Notifier::clicked);
        m_notifier->post(u"tr-1"_s, u"A"_s, {});
        QVERIFY(havePosted(1));
        QVERIFY(m_service->dropName());
        m_notifier->post(u"tr-2"_s, u"Nobody sees this"_s, {});

        MockService other(m_bus->connection(), service, path);
        serve(other);
        m_capabilities = {};
        QVERIFY(other.takeName());
        m_notifier->post(u"tr-1"_s, u"A again"_s, {});
        QVERIFY(QTest::qWaitFor([&] { return !posted(other).isEmpty() && posted(other).last().title() == u"A again"_s; },
                                test::patience));
        QCOMPARE(posted(other).last().replaces(), 0u);
        QVERIFY(posted(other).last().actions().isEmpty());
        const uint number = m_number;
        m_notifier->post(u"tr-1"_s, u"A once more"_s, {});
        QVERIFY(QTest::qWaitFor([&] { return posted(other).last().title() == u"A once more"_s; }, test::patience));
        QCOMPARE(posted(other).last().replaces(), number);
        tell(other, u"ActionInvoked"_s, number, u"default"_s);
        EVENTUALLY_COMPARE(clicked.size(), 1);
        QCOMPARE(posted().size(), 1);
    }

    void theServiceDoesNotAnswer()
    {
        m_service->answer = nullptr;
        QVERIFY(m_service->takeName());
        makeNotifier(50);
        m_notifier->post(u"tr-1"_s, u"A"_s, u"1 < 2"_s);
        m_notifier->post(u"tr-2"_s, u"B"_s, {});
        // Given to it all the same: it may only be slow.
        QVERIFY(havePosted(2));
        QCOMPARE(posted().at(0).body(), u"1 < 2"_s);
        QVERIFY(posted().at(0).actions().isEmpty());
        serve(*m_service);
        m_notifier->post(u"tr-3"_s, u"C"_s, {});
        EVENTUALLY_VERIFY(m_number == 41);
        QCOMPARE(posted().last().title(), u"C"_s);
    }

    void theServiceAnswersSomethingElse()
    {
        m_service->answer = [&](const QDBusMessage &call) { m_service->send(call.createReply(u"yes"_s)); };
        QVERIFY(m_service->takeName());
        makeNotifier();
        m_notifier->post(u"tr-1"_s, u"A"_s, {});
        m_notifier->post(u"tr-1"_s, u"A"_s, {});
        QVERIFY(havePosted(2));
        QCOMPARE(posted().last().replaces(), 0u);
    }

    void theServiceRefuses()
    {
        m_service->answer = [&](const QDBusMessage &call) {
            m_service->send(call.createErrorReply(QDBusError::AccessDenied, u"no"_s));
        };
        QVERIFY(m_service->takeName());
        makeNotifier();
        m_notifier->post(u"tr-1"_s, u"A"_s, {});
        m_notifier->post(u"tr-2"_s, u"B"_s, {});
        QVERIFY(havePosted(2));
    }

    void deathWhileAnAnswerIsOnItsWay()
    {
        m_service->answer = nullptr;
        QVERIFY(m_service->takeName());
        makeNotifier();
        m_notifier->post(u"tr-1"_s, u"A"_s, {});
        EVENTUALLY_COMPARE(m_service->calls.size(), 1);
        m_notifier.reset();
        m_service->send(m_service->calls.constFirst().createReply(m_capabilities));
        m_app->call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus"_s, u"GetId"_s));
        QCOMPARE(m_service->calls.size(), 1);
    }

    void withoutABus()
    {
        Notifier notifier(NoBus(), u"Open"_s);
        QSignalSpy clicked(&notifier, &Notifier::clicked);
        notifier.post(u"tr-1"_s, u"A"_s, {});
        notifier.post(u"tr-1"_s, u"A"_s, {});
        QCoreApplication::processEvents();
        QCOMPARE(clicked.size(), 0);
    }

    void aBusThatHangsHoldsNothingUp()
    {
        const auto daemon = pid_t(m_bus->processId());
        ::kill(daemon, SIGSTOP);
        // Wakes the bus when the calls below wait for it, which would otherwise be for 25 seconds.
        QSemaphore done;
        bool held = false;
        std::thread rescuer([&] {
            held = !done.tryAcquire(1, 10'000);
            ::kill(daemon, SIGCONT);
        });
        makeNotifier();
        m_notifier->post(u"tr-1"_s, u"A"_s, {});
        m_notifier->post(u"tr-2"_s, u"B"_s, {});
        m_notifier.reset();
        done.release();
        rescuer.join();
        QVERIFY(!held);
    }
};

QTEST_GUILESS_MAIN(NotifierTest)

#include "NotifierTest.moc"

#include "platform/SleepInhibitor.h"
#include "PrivateBus.h"

#include "support/Eventually.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QRegularExpression>
#include <QSemaphore>
#include <QTest>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <thread>
#include <unistd.h>

using namespace tuppi;
using namespace Qt::StringLiterals;

using Holder = SleepInhibitor::Holder;

namespace {

/// logind's side of one lock.
class Lock
{
public:
    Lock()
    {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) == 0) {
            m_ours = ends[0];
            m_theirs = ends[1];
        }
    }
    ~Lock()
    {
        ::close(m_ours);
        if (m_theirs >= 0)
            ::close(m_theirs);
    }
    Q_DISABLE_COPY(Lock)

    QDBusUnixFileDescriptor give()
    {
        QDBusUnixFileDescriptor descriptor;
        descriptor.giveFileDescriptor(m_theirs);
        m_theirs = -1;
        return descriptor;
    }
    /// True once nobody holds the end that was given.
    bool isReleased() const
    {
        pollfd end{m_ours, 0, 0};
        return ::poll(&end, 1, 0) == 1 && (end.revents & POLLHUP);
    }

private:
    int m_ours = -1;
    int m_theirs = -1;
};

} // namespace

class SleepInhibitorTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<PrivateBus> m_session;
    std::unique_ptr<PrivateBus> m_system;
    std::unique_ptr<MockService> m_portal;
    std::unique_ptr<MockService> m_logind;
    std::unique_ptr<QDBusConnection> m_app;
    std::unique_ptr<QDBusConnection> m_appSystem;
    std::unique_ptr<SleepInhibitor> m_inhibitor;

    static QString requestOf(const QDBusMessage &call)
    {
        return u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(
            call.service().mid(1).replace(u'.', u'_'), options(call).value(u"handle_token"_s).toString());
    }

    static QVariantMap options(const QDBusMessage &call)
    {
        return qdbus_cast<QVariantMap>(call.arguments().value(2));
    }

    void grant(const QDBusMessage &call)
    {
        m_portal->send(call.createReply(QVariant::fromValue(QDBusObjectPath(requestOf(call)))));
    }

    void portalGrants()
    {
        m_portal->answer = [this](const QDBusMessage &call) {
            if (call.member() == u"Inhibit"_s)
                grant(call);
            else
                m_portal->send(call.createReply());
        };
    }

    void portalRefuses()
    {
        m_portal->answer = [this](const QDBusMessage &call) {
            m_portal->send(call.createErrorReply(QDBusError::UnknownInterface, u"none"_s));
        };
    }

    void logindGives(Lock &lock)
    {
        m_logind->answer = [this, &lock](const QDBusMessage &call) {
            m_logind->send(call.createReply(QVariant::fromValue(lock.give())));
        };
    }

    QStringList closed() const
    {
        QStringList paths;
        for (const QDBusMessage &call : m_portal->calls) {
            if (call.member() == u"Close"_s)
                paths.append(call.path());
        }
        return paths;
    }

    QStringList requested() const
    {
        QStringList paths;
        for (const QDBusMessage &call : m_portal->calls) {
            if (call.member() == u"Inhibit"_s)
                paths.append(requestOf(call));
        }
        return paths;
    }

    void makeInhibitor(int limit = serviceLimit)
    {
        m_inhibitor = std::make_unique<SleepInhibitor>(*m_app, *m_appSystem, u"Transcribing"_s, limit);
    }

private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        m_session = std::make_unique<PrivateBus>();
        m_system = std::make_unique<PrivateBus>();
        QVERIFY(m_session->isRunning() && m_system->isRunning());
        m_portal = std::make_unique<MockService>(m_session->connection(), u"org.freedesktop.portal.Desktop"_s,
                                                 u"/org/freedesktop/portal/desktop"_s);
        m_logind = std::make_unique<MockService>(m_system->connection(), u"org.freedesktop.login1"_s,
                                                 u"/org/freedesktop/login1"_s);
        m_app = std::make_unique<QDBusConnection>(m_session->connection());
        m_appSystem = std::make_unique<QDBusConnection>(m_system->connection());
    }

    void cleanup()
    {
        m_inhibitor.reset();
        m_portal.reset();
        m_logind.reset();
        m_app.reset();
        m_appSystem.reset();
        m_session.reset();
        m_system.reset();
    }

    void thePortalHolds()
    {
        portalGrants();
        QVERIFY(m_portal->takeName() && m_logind->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        QCOMPARE(m_inhibitor->holder(), Holder::Nobody);
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Portal);

        const QDBusMessage call = m_portal->calls.constFirst();
        QCOMPARE(call.interface(), u"org.freedesktop.portal.Inhibit"_s);
        QCOMPARE(call.path(), u"/org/freedesktop/portal/desktop"_s);
        QCOMPARE(call.signature(), u"sua{sv}"_s);
        QCOMPARE(call.arguments().value(1).toUInt(), 4u);
        QCOMPARE(options(call).value(u"reason"_s).toString(), u"Transcribing"_s);

        m_inhibitor->setInhibited(false);
        QCOMPARE(m_inhibitor->holder(), Holder::Nobody);
        EVENTUALLY_COMPARE(closed(), requested());
        QCOMPARE(m_logind->calls.size(), 0);
    }

    void sayingItAgainDoesNothing()
    {
        portalGrants();
        QVERIFY(m_portal->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(false);
        for (int i = 0; i < 3; ++i)
            m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Portal);
        m_inhibitor->setInhibited(true);
        for (int i = 0; i < 3; ++i)
            m_inhibitor->setInhibited(false);
        m_inhibitor->setInhibited(true); // comes after all of those
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Portal);
        QCOMPARE(m_portal->count(u"Inhibit"_s), 2);
        QCOMPARE(m_portal->count(u"Close"_s), 1);
    }

    void releasedWhileTheGrantIsOnItsWay()
    {
        QVERIFY(m_portal->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_portal->count(u"Inhibit"_s), 1);
        m_inhibitor->setInhibited(false);
        grant(m_portal->calls.constFirst());
        EVENTUALLY_COMPARE(closed(), requested());
        QCOMPARE(m_inhibitor->holder(), Holder::Nobody);
    }

    void wantedAgainWhileTheFirstGrantIsOnItsWay()
    {
        QVERIFY(m_portal->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        m_inhibitor->setInhibited(false);
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_portal->count(u"Inhibit"_s), 2);
        const QStringList requests = requested();
        QVERIFY(requests.value(0) != requests.value(1));
        grant(m_portal->calls.value(1));
        grant(m_portal->calls.value(0));
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Portal);
        EVENTUALLY_COMPARE(closed(), requests.first(1));
        m_inhibitor->setInhibited(false);
        EVENTUALLY_COMPARE(closed(), requests);
    }

    void deathReleases()
    {
        portalGrants();
        QVERIFY(m_portal->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Portal);
        m_inhibitor.reset();
        EVENTUALLY_COMPARE(closed(), requested());
    }

    void deathWhileTheGrantIsOnItsWay()
    {
        QVERIFY(m_portal->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_portal->count(u"Inhibit"_s), 1);
        m_inhibitor.reset();
        grant(m_portal->calls.constFirst());
        EVENTUALLY_COMPARE(closed(), requested());
    }

    void aPathThatThePortalChose()
    {
        const QString chosen = u"/org/freedesktop/portal/desktop/request/42"_s;
        m_portal->answer = [&](const QDBusMessage &call) {
            m_portal->send(call.createReply(QVariant::fromValue(QDBusObjectPath(chosen))));
        };
        QVERIFY(m_portal->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Portal);
        m_inhibitor->setInhibited(false);
        EVENTUALLY_COMPARE(closed(), QStringList{chosen});
    }

    void logindWhereThePortalRefuses()
    {
        Lock lock;
        portalRefuses();
        logindGives(lock);
        QVERIFY(m_portal->takeName() && m_logind->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Logind);
        const QDBusMessage call = m_logind->calls.constFirst();
        QCOMPARE(call.interface(), u"org.freedesktop.login1.Manager"_s);
        QCOMPARE(call.member(), u"Inhibit"_s);
        QCOMPARE(call.arguments(),
                 (QVariantList{u"sleep"_s, u"Tuppi Transcriber"_s, u"Transcribing"_s, u"block"_s}));
        QVERIFY(!lock.isReleased());
        m_inhibitor->setInhibited(false);
        QCOMPARE(m_inhibitor->holder(), Holder::Nobody);
        EVENTUALLY_VERIFY(lock.isReleased());
    }

    void logindLockEndsWithTheObject()
    {
        Lock lock;
        logindGives(lock);
        QVERIFY(m_logind->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Logind);
        m_inhibitor.reset();
        EVENTUALLY_VERIFY(lock.isReleased());
    }

    void logindGrantsTooLate_data()
    {
        QTest::addColumn<bool>("dies");
        QTest::newRow("released") << false;
        QTest::newRow("dead") << true;
    }

    void logindGrantsTooLate()
    {
        QFETCH(const bool, dies);
        Lock lock;
        QVERIFY(m_logind->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_logind->calls.size(), 1);
        if (dies)
            m_inhibitor.reset();
        else
            m_inhibitor->setInhibited(false);
        m_logind->send(m_logind->calls.constFirst().createReply(QVariant::fromValue(lock.give())));
        EVENTUALLY_VERIFY(lock.isReleased());
        QVERIFY(dies || m_inhibitor->holder() == Holder::Nobody);
    }

    void anOldRefusalDoesNotSpoilANewQuestion()
    {
        Lock lock;
        QVERIFY(m_logind->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_logind->calls.size(), 1);
        m_inhibitor->setInhibited(false);
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_logind->calls.size(), 2);
        m_logind->send(m_logind->calls.value(0).createErrorReply(QDBusError::AccessDenied, u"no"_s));
        m_logind->send(m_logind->calls.value(1).createReply(QVariant::fromValue(lock.give())));
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Logind);
        QVERIFY(!lock.isReleased());
    }

    void thePortalDoesNotAnswer()
    {
        Lock lock;
        logindGives(lock);
        QVERIFY(m_portal->takeName() && m_logind->takeName());
        makeInhibitor(100);
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Logind);
        // What it may still grant has been given back.
        EVENTUALLY_COMPARE(closed(), requested());
    }

    void thePortalSaysNoLater()
    {
        Lock lock;
        logindGives(lock);
        portalGrants();
        QVERIFY(m_portal->takeName() && m_logind->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Portal);
        const auto respond = [this](const QString &path, uint code) {
            QDBusMessage response =
                QDBusMessage::createSignal(path, u"org.freedesktop.portal.Request"_s, u"Response"_s);
            response << code << QVariantMap();
            m_portal->send(response);
        };
        const QString request = requested().constFirst();
        respond(request + u"x"_s, 2); // somebody else's
        respond(request, 0);
        QCOMPARE(m_inhibitor->holder(), Holder::Portal);
        respond(request, 2);
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Logind);
        QCOMPARE(m_logind->calls.size(), 1);
    }

    void thePortalVanishes()
    {
        Lock lock;
        logindGives(lock);
        portalGrants();
        QVERIFY(m_portal->takeName() && m_logind->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Portal);
        QVERIFY(m_portal->dropName());
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Logind);
    }

    void nobodyIsThereUntilLater_data()
    {
        QTest::addColumn<Holder>("late");
        QTest::newRow("portal") << Holder::Portal;
        QTest::newRow("logind") << Holder::Logind;
    }

    void nobodyIsThereUntilLater()
    {
        QFETCH(const Holder, late);
        Lock lock;
        logindGives(lock);
        portalGrants();
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        QVERIFY(late == Holder::Portal ? m_portal->takeName() : m_logind->takeName());
        EVENTUALLY_COMPARE(m_inhibitor->holder(), late);
    }

    void aRefusalIsNotAskedAgain()
    {
        portalRefuses();
        m_logind->answer = [this](const QDBusMessage &call) {
            m_logind->send(call.createErrorReply(QDBusError::AccessDenied, u"no"_s));
        };
        QVERIFY(m_portal->takeName() && m_logind->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_logind->calls.size(), 1);
        m_inhibitor->setInhibited(true);
        m_inhibitor->setInhibited(false);
        m_inhibitor->setInhibited(true); // new work is a new question
        EVENTUALLY_COMPARE(m_logind->calls.size(), 2);
        QCOMPARE(m_portal->count(u"Inhibit"_s), 2);
        QCOMPARE(m_portal->count(u"Close"_s), 0);
        QCOMPARE(m_inhibitor->holder(), Holder::Nobody);
    }

    void logindAnswersSomethingElse()
    {
        m_logind->answer = [this](const QDBusMessage &call) {
            m_logind->send(call.createReply(u"yes"_s));
            m_logind->answer = nullptr;
        };
        QVERIFY(m_logind->takeName());
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        EVENTUALLY_COMPARE(m_logind->calls.size(), 1);
        QVERIFY(m_logind->dropName());
        Lock lock;
        logindGives(lock);
        QVERIFY(m_logind->takeName()); // asked again only when the first answer counted as a refusal
        EVENTUALLY_COMPARE(m_inhibitor->holder(), Holder::Logind);
    }

    void withoutABus()
    {
        SleepInhibitor inhibitor(NoBus(), NoBus(), u"Transcribing"_s);
        inhibitor.setInhibited(true);
        inhibitor.setInhibited(false);
        inhibitor.setInhibited(true);
        QCOMPARE(inhibitor.holder(), Holder::Nobody);
        // With a system bus only.
        Lock lock;
        logindGives(lock);
        QVERIFY(m_logind->takeName());
        SleepInhibitor other(NoBus(), *m_appSystem, u"Transcribing"_s);
        other.setInhibited(true);
        EVENTUALLY_COMPARE(other.holder(), Holder::Logind);
        QCOMPARE(inhibitor.holder(), Holder::Nobody);
    }

    void aBusThatHangsHoldsNothingUp()
    {
        const pid_t daemons[] = {pid_t(m_session->processId()), pid_t(m_system->processId())};
        for (const pid_t daemon : daemons)
            ::kill(daemon, SIGSTOP);
        // Wakes the buses when the calls below wait for them, which would otherwise be for 25 seconds.
        QSemaphore done;
        bool held = false;
        std::thread rescuer([&] {
            held = !done.tryAcquire(1, 10000);
            for (const pid_t daemon : daemons)
                ::kill(daemon, SIGCONT);
        });
        makeInhibitor();
        m_inhibitor->setInhibited(true);
        m_inhibitor->setInhibited(false);
        m_inhibitor->setInhibited(true);
        m_inhibitor.reset();
        done.release();
        rescuer.join();
        QVERIFY(!held);
    }
};

QTEST_GUILESS_MAIN(SleepInhibitorTest)

#include "SleepInhibitorTest.moc"

#include "platform/ReducedMotion.h"
#include "PrivateBus.h"

#include "support/Eventually.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDir>
#include <QFile>
#include <QFileSystemWatcher>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <memory>
#include <thread>

using namespace tuppi;
using namespace Qt::StringLiterals;

using Settings = QMap<QString, QVariantMap>;
Q_DECLARE_METATYPE(Settings)

namespace {

const QString appearance = u"org.freedesktop.appearance"_s;
const QString gnome = u"org.gnome.desktop.interface"_s;

Settings motion(uint reduced)
{
    return {{appearance, {{u"reduced-motion"_s, reduced}, {u"color-scheme"_s, 1u}}}};
}

Settings animations(bool enabled)
{
    return {{gnome, {{u"enable-animations"_s, enabled}}}};
}

} // namespace

class ReducedMotionTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<MockService> m_portal;
    std::unique_ptr<QTemporaryDir> m_home;
    Settings m_settings;

    QString kdeglobals() const { return m_home->filePath(u"kdeglobals"_s); }

    void writeKdeglobals(const QByteArray &text)
    {
        QFile file(kdeglobals()); // in place
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }

    void replaceKdeglobals(const QByteArray &text)
    {
        QSaveFile file(kdeglobals());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit());
    }

    void answerWithSettings()
    {
        m_portal->answer = [this](const QDBusMessage &call) {
            m_portal->send(call.createReply(QVariant::fromValue(m_settings)));
        };
    }

    void sendSettingChanged(const QString &group, const QString &key, const QVariant &value)
    {
        QDBusMessage signal = QDBusMessage::createSignal(
            u"/org/freedesktop/portal/desktop"_s, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        m_portal->send(signal);
    }

    void changeMotion(uint value)
    {
        m_settings = motion(value);
        sendSettingChanged(appearance, u"reduced-motion"_s, value);
    }

private Q_SLOTS:
    void initTestCase() { qDBusRegisterMetaType<Settings>(); }

    void init()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        m_bus = std::make_unique<PrivateBus>();
        QVERIFY(m_bus->isRunning());
        m_home = std::make_unique<QTemporaryDir>();
        m_settings.clear();
        m_portal = std::make_unique<MockService>(m_bus->connection(), u"org.freedesktop.portal.Desktop"_s,
                                                 u"/org/freedesktop/portal/desktop"_s);
        answerWithSettings();
    }

    void cleanup()
    {
        m_portal.reset();
        m_bus.reset();
    }

    void factor_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("known");
        QTest::addColumn<double>("factor");
        QTest::newRow("nothing") << QByteArray() << false << 0.0;
        QTest::newRow("zero") << QByteArray("[KDE]\nAnimationDurationFactor=0\n") << true << 0.0;
        QTest::newRow("half")
            << QByteArray("[General]\nx=1\n\n[KDE]\nSingleClick=false\nAnimationDurationFactor = 0.5\n")
            << true << 0.5;
        QTest::newRow("locked key") << QByteArray("[KDE]\nAnimationDurationFactor[$i]=0") << true << 0.0;
        QTest::newRow("locked group") << QByteArray("[KDE][$i]\nAnimationDurationFactor=0\n") << true << 0.0;
        QTest::newRow("other group") << QByteArray("[KDE]\n[General]\nAnimationDurationFactor=0\n") << false
                                     << 0.0;
        QTest::newRow("subgroup") << QByteArray("[KDE][Other]\nAnimationDurationFactor=0\n") << false << 0.0;
        QTest::newRow("comment") << QByteArray("[KDE]\n#AnimationDurationFactor=0\n") << false << 0.0;
        QTest::newRow("longer key") << QByteArray("[KDE]\nAnimationDurationFactorOld=0\n") << false << 0.0;
        QTest::newRow("no number") << QByteArray("[KDE]\nAnimationDurationFactor=none\n") << false << 0.0;
        QTest::newRow("no equals sign") << QByteArray("[KDE]\nAnimationDurationFactor\n") << false << 0.0;
        QTest::newRow("bytes") << QByteArray("\xff\xfe[KDE\x00\n=\n[", 10) << false << 0.0;
    }

    void factor()
    {
        QFETCH(const QByteArray, text);
        QFETCH(const bool, known);
        QFETCH(const double, factor);
        const std::optional<double> read = AnimationDurationFactor(text);
        QCOMPARE(read.has_value(), known);
        QCOMPARE(read.value_or(0), factor);
    }

    void order_data()
    {
        QTest::addColumn<Settings>("settings");
        QTest::addColumn<QByteArray>("kde");
        QTest::addColumn<bool>("reduced");
        const QByteArray still("[KDE]\nAnimationDurationFactor=0\n"),
            lively("[KDE]\nAnimationDurationFactor=1\n");
        Settings both = motion(1), neither = motion(0);
        both.insert(animations(true));
        neither.insert(animations(false));
        QTest::newRow("reduced") << motion(1) << QByteArray() << true;
        QTest::newRow("no preference") << motion(0) << QByteArray() << false;
        QTest::newRow("a value yet unknown") << motion(7) << QByteArray() << false;
        QTest::newRow("no animations") << animations(false) << QByteArray() << true;
        QTest::newRow("animations") << animations(true) << QByteArray() << false;
        QTest::newRow("reduced motion is asked first") << both << lively << true;
        QTest::newRow("no preference asks on") << neither << lively << true;
        QTest::newRow("animations decide before the file") << animations(true) << still << false;
        QTest::newRow("the file") << Settings() << still << true;
        QTest::newRow("the file, not reduced") << Settings() << lively << false;
        QTest::newRow("no preference, and the file") << motion(0) << still << true;
        QTest::newRow("a text") << Settings{{appearance, {{u"reduced-motion"_s, u"1"_s}}}} << QByteArray()
                                << false;
        QTest::newRow("a number") << Settings{{gnome, {{u"enable-animations"_s, 0}}}} << QByteArray()
                                  << false;
        QTest::newRow("nothing") << Settings() << QByteArray() << false;
    }

    void order()
    {
        QFETCH(const Settings, settings);
        QFETCH(const QByteArray, kde);
        QFETCH(const bool, reduced);
        if (!kde.isEmpty())
            writeKdeglobals(kde);
        m_settings = settings;
        QVERIFY(m_portal->takeName());

        ReducedMotion motionNow(m_bus->connection(), kdeglobals());
        QSignalSpy changed(&motionNow, &ReducedMotion::changed);
        EVENTUALLY_COMPARE(m_portal->count(u"ReadAll"_s), 1);
        QCOMPARE(m_portal->calls.constFirst().arguments(), QVariantList{QStringList({appearance, gnome})});
        if (reduced) {
            EVENTUALLY_VERIFY(motionNow.isReduced());
            QCOMPARE(changed, (QList<QVariantList>{{true}}));
        } else {
            // What the portal says next shows that the first answer has been read by then.
            changeMotion(1);
            EVENTUALLY_VERIFY(motionNow.isReduced());
            QCOMPARE(changed, (QList<QVariantList>{{true}}));
            QCOMPARE(m_portal->count(u"ReadAll"_s), 2);
        }
    }

    void badAnswers_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("an error") << 0;
        QTest::newRow("no such interface") << 1;
        QTest::newRow("another type") << 2;
        QTest::newRow("nothing in the answer") << 3;
        QTest::newRow("no answer") << 4;
    }

    void badAnswers()
    {
        QFETCH(const int, kind);
        writeKdeglobals("[KDE]\nAnimationDurationFactor=0\n");
        m_portal->answer = [this, kind](const QDBusMessage &call) {
            if (kind == 0)
                m_portal->send(call.createErrorReply(QDBusError::Failed, u"broken"_s));
            else if (kind == 1)
                m_portal->send(call.createErrorReply(QDBusError::UnknownInterface, u"none"_s));
            else if (kind == 2)
                m_portal->send(call.createReply(u"reduced"_s));
            else if (kind == 3)
                m_portal->send(call.createReply());
        };
        QVERIFY(m_portal->takeName());
        ReducedMotion motionNow(m_bus->connection(), kdeglobals(), 100);
        QVERIFY(!motionNow.isReduced());
        EVENTUALLY_VERIFY(motionNow.isReduced());
    }

    void followsChanges()
    {
        m_settings = motion(0);
        QVERIFY(m_portal->takeName());
        ReducedMotion motionNow(m_bus->connection(), kdeglobals());
        QSignalSpy changed(&motionNow, &ReducedMotion::changed);
        EVENTUALLY_COMPARE(m_portal->count(u"ReadAll"_s), 1);
        changeMotion(1);
        EVENTUALLY_COMPARE(changed, (QList<QVariantList>{{true}}));
        changeMotion(0);
        EVENTUALLY_COMPARE(changed, (QList<QVariantList>{{true}, {false}}));
        m_settings = animations(false);
        sendSettingChanged(gnome, u"enable-animations"_s, false);
        EVENTUALLY_COMPARE(changed, (QList<QVariantList>{{true}, {false}, {true}}));
    }

    void aChangeWhileAskingIsNotMissed()
    {
        QVERIFY(m_portal->takeName());
        QDBusMessage first;
        m_portal->answer = [&first](const QDBusMessage &call) { first = call; };
        ReducedMotion motionNow(m_bus->connection(), kdeglobals());
        EVENTUALLY_COMPARE(m_portal->count(u"ReadAll"_s), 1);
        sendSettingChanged(appearance, u"reduced-motion"_s, 1u);
        sendSettingChanged(appearance, u"reduced-motion"_s, 1u);
        answerWithSettings();
        m_settings = motion(1);
        m_portal->send(first.createReply(QVariant::fromValue(motion(0))));
        EVENTUALLY_VERIFY(motionNow.isReduced());
    }

    void otherSettingsAreNotFollowed()
    {
        QVERIFY(m_portal->takeName());
        ReducedMotion motionNow(m_bus->connection(), kdeglobals());
        EVENTUALLY_COMPARE(m_portal->count(u"ReadAll"_s), 1);
        sendSettingChanged(appearance, u"color-scheme"_s, 1u);
        sendSettingChanged(gnome, u"reduced-motion"_s, 1u);
        changeMotion(1);
        EVENTUALLY_VERIFY(motionNow.isReduced());
        QCOMPARE(m_portal->count(u"ReadAll"_s), 2);
    }

    void aSignalIsNotBelieved()
    {
        m_settings = motion(0);
        QVERIFY(m_portal->takeName());
        ReducedMotion motionNow(m_bus->connection(), kdeglobals());
        QSignalSpy changed(&motionNow, &ReducedMotion::changed);
        EVENTUALLY_COMPARE(m_portal->count(u"ReadAll"_s), 1);
        sendSettingChanged(appearance, u"reduced-motion"_s, 1u); // the portal itself still says 0
        EVENTUALLY_COMPARE(m_portal->count(u"ReadAll"_s), 2);
        m_settings = animations(true);
        sendSettingChanged(gnome, u"enable-animations"_s, true);
        EVENTUALLY_COMPARE(m_portal->count(u"ReadAll"_s), 3);
        changeMotion(1);
        EVENTUALLY_VERIFY(motionNow.isReduced());
        QCOMPARE(changed, (QList<QVariantList>{{true}}));
    }

    void thePortalComesLateAndGoes()
    {
        m_settings = motion(1);
        ReducedMotion motionNow(m_bus->connection(), kdeglobals());
        QSignalSpy changed(&motionNow, &ReducedMotion::changed);
        QVERIFY(!motionNow.isReduced());
        QVERIFY(m_portal->takeName());
        EVENTUALLY_VERIFY(motionNow.isReduced());

        QVERIFY(m_portal->dropName());
        m_settings = motion(0);
        QVERIFY(m_portal->takeName());
        EVENTUALLY_VERIFY(!motionNow.isReduced());
        // Its going alone changed nothing.
        QCOMPARE(changed, (QList<QVariantList>{{true}, {false}}));
    }

    void followsTheFile()
    {
        ReducedMotion motionNow(m_bus->connection(), kdeglobals());
        QSignalSpy changed(&motionNow, &ReducedMotion::changed);
        // Written only once it is watched: its folder is watched from the portal's answer on.
        EVENTUALLY_VERIFY(motionNow.findChild<QFileSystemWatcher *>());
        replaceKdeglobals("[KDE]\nAnimationDurationFactor=0\n"); // appears
        EVENTUALLY_COMPARE(changed.size(), 1);
        replaceKdeglobals("[KDE]\nAnimationDurationFactor=2\n"); // is replaced
        EVENTUALLY_COMPARE(changed.size(), 2);
        writeKdeglobals("[KDE]\nAnimationDurationFactor=0\n"); // is written in place
        EVENTUALLY_COMPARE(changed.size(), 3);
        QVERIFY(QFile::remove(kdeglobals())); // vanishes
        EVENTUALLY_COMPARE(changed.size(), 4);
        replaceKdeglobals("[KDE]\nAnimationDurationFactor=0\n"); // comes back
        EVENTUALLY_COMPARE(changed.size(), 5);
        QVERIFY(motionNow.isReduced());
    }

    void theFileIsLeftAloneWhereThePortalKnows()
    {
        m_settings = animations(true);
        QVERIFY(m_portal->takeName());
        ReducedMotion motionNow(m_bus->connection(), kdeglobals());
        EVENTUALLY_COMPARE(m_portal->count(u"ReadAll"_s), 1);
        changeMotion(1);
        EVENTUALLY_VERIFY(motionNow.isReduced());
        QVERIFY(!motionNow.findChild<QFileSystemWatcher *>());
    }

    void withoutABus()
    {
        writeKdeglobals("[KDE]\nAnimationDurationFactor=0\n");
        QVERIFY(ReducedMotion(NoBus(), kdeglobals()).isReduced());
        QVERIFY(!ReducedMotion(NoBus(), u"/nonexistent/kdeglobals"_s).isReduced());
        QVERIFY(!ReducedMotion(NoBus(), m_home->path()).isReduced());
    }

    void theBusDies()
    {
        m_settings = motion(1);
        QVERIFY(m_portal->takeName());
        const QDBusConnection connection = m_bus->connection();
        ReducedMotion motionNow(connection, kdeglobals());
        EVENTUALLY_VERIFY(motionNow.isReduced());
        ::kill(pid_t(m_bus->processId()), SIGKILL);
        EVENTUALLY_VERIFY(!connection.isConnected());
        QVERIFY(motionNow.isReduced());
    }

    void aBusThatHangsHoldsNothingUp()
    {
        const QDBusConnection connection = m_bus->connection();
        const pid_t daemon = pid_t(m_bus->processId());
        ::kill(daemon, SIGSTOP);
        // Wakes the bus when the calls below wait for it, which would otherwise be for 25 seconds.
        QSemaphore done;
        bool held = false;
        std::thread rescuer([&] {
            held = !done.tryAcquire(1, 10000);
            ::kill(daemon, SIGCONT);
        });
        {
            const ReducedMotion motionNow(connection, kdeglobals());
            QVERIFY(!motionNow.isReduced());
        }
        done.release();
        rescuer.join();
        QVERIFY(!held);
    }
};

QTEST_GUILESS_MAIN(ReducedMotionTest)

#include "ReducedMotionTest.moc"

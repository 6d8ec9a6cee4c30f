// Files handed to the desktop over the bus: the file manager and the portal.

#include "PrivateBus.h"

#include "platform/PortalRequest.h"
#include "platform/RevealInFileManager.h"
#include "platform/ShareFile.h"

#include "support/Eventually.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDesktopServices>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

/// The programs found while the object lives: the mail program, which only notes what it is told, or none.
class MailProgram
{
public:
    explicit MailProgram(bool exists)
        : m_before(qgetenv("PATH"))
    {
        QFile program(m_folder.filePath(u"xdg-email"_s));
        if (exists && program.open(QIODevice::WriteOnly)) {
            program.write("#!/bin/sh\nprintf '%s\\n' \"$@\" >\"$0.part\"\n/bin/mv \"$0.part\" \"$0.sent\"\n");
            program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        qputenv("PATH", QFile::encodeName(m_folder.path()));
    }
    ~MailProgram() { qputenv("PATH", m_before); }
    Q_DISABLE_COPY(MailProgram)
    QStringList sent() const
    {
        QFile note(m_folder.filePath(u"xdg-email.sent"_s));
        return note.open(QIODevice::ReadOnly) ? QString::fromUtf8(note.readAll()).split(u'\n', Qt::SkipEmptyParts) : QStringList();
    }

private:
    QByteArray m_before;
    QTemporaryDir m_folder;
};

} // namespace

class HandOnTest : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void opened(const QUrl &url) { m_opened.append(url.toLocalFile()); }

private Q_SLOTS:
    void init()
    {
        m_opened.clear();
        QDesktopServices::setUrlHandler(u"file"_s, this, "opened");
        m_path = m_dir.filePath(u"50% Кіт.txt"_s);
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write("the text"), 8);
        QVERIFY(m_bus.isRunning());
    }
    void cleanup() { QDesktopServices::unsetUrlHandler(u"file"_s); }

    void theFileManagerSelectsTheFile()
    {
        const QDBusConnection desktop = m_bus.connection();
        MockService manager(desktop, u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s);
        QVERIFY(manager.takeName());
        manager.answer = [&](const QDBusMessage &call) { manager.send(call.createReply()); };
        RevealInFileManager(m_bus.connection(), m_path, this);
        EVENTUALLY_COMPARE(manager.count(u"ShowItems"_s), 1);
        const QStringList urls = manager.calls.constFirst().arguments().constFirst().toStringList();
        QCOMPARE(urls.size(), 1);
        QCOMPARE(QUrl::fromEncoded(urls.constFirst().toLatin1()).toLocalFile(), m_path);
        manager.dropName();
        QCOMPARE(m_opened, QStringList());
    }

    void withoutAFileManagerOnTheBusTheFolderIsOpened()
    {
        RevealInFileManager(m_bus.connection(), m_path, this);
        EVENTUALLY_COMPARE(m_opened, QStringList{m_dir.path()});
    }

    void thePortalIsAskedWhichProgram_data()
    {
        QTest::addColumn<uint>("outcome");
        QTest::addColumn<bool>("falls");
        QTest::newRow("opened") << 0U << false;
        QTest::newRow("the person said no") << 1U << false;
        QTest::newRow("failed") << 2U << true;
    }

    void thePortalIsAskedWhichProgram()
    {
        QFETCH(const uint, outcome);
        QFETCH(const bool, falls);
        const QDBusConnection desktop = m_bus.connection();
        MockService portal(desktop, u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s);
        QVERIFY(portal.takeName());
        QVariantMap options;
        answerRequests(portal, outcome, options);
        QObject context;
        OpenWithProgram(m_bus.connection(), {m_path, u"Title"_s, {}}, &context, [] {});
        EVENTUALLY_COMPARE(portal.count(u"OpenFile"_s), 1);
        EVENTUALLY_VERIFY(context.children().isEmpty()); // the request has had its outcome
        QCOMPARE(options.value(u"ask"_s).toBool(), true);
        QVERIFY(portal.calls.constFirst().arguments().at(1).value<QDBusUnixFileDescriptor>().isValid());
        QCOMPARE(m_opened, falls ? QStringList{m_path} : QStringList());
        portal.dropName();
    }

    void theMessageHasASubjectAndTheFile_data()
    {
        QTest::addColumn<uint>("outcome");
        QTest::addColumn<bool>("mailProgram");
        QTest::addColumn<bool>("falls");
        QTest::addColumn<int>("failures");
        QTest::newRow("sent or kept") << 0U << true << false << 0;
        QTest::newRow("the person changed their mind") << 1U << true << false << 0;
        QTest::newRow("failed, and a program sends it") << 2U << true << true << 0;
        QTest::newRow("failed, and there is no program") << 2U << false << false << 1;
    }

    void theMessageHasASubjectAndTheFile()
    {
        QFETCH(const uint, outcome);
        QFETCH(const bool, mailProgram);
        QFETCH(const bool, falls);
        QFETCH(const int, failures);
        const MailProgram program(mailProgram);
        const QDBusConnection desktop = m_bus.connection();
        MockService portal(desktop, u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s);
        QVERIFY(portal.takeName());
        QVariantMap options;
        answerRequests(portal, outcome, options);
        QObject context;
        int failed = 0;
        SendByEmail(m_bus.connection(), {m_path, u"Розмова: 50% \"так\""_s, u"x11:2a"_s}, &context, [&] { ++failed; });
        EVENTUALLY_COMPARE(portal.count(u"ComposeEmail"_s), 1);
        EVENTUALLY_VERIFY(context.children().isEmpty()); // the request has had its outcome
        const QDBusMessage call = portal.calls.constFirst();
        QCOMPARE(call.interface(), u"org.freedesktop.portal.Email"_s);
        QCOMPARE(call.signature(), u"sa{sv}"_s);
        QCOMPARE(call.arguments().constFirst().toString(), u"x11:2a"_s);
        QCOMPARE(options.value(u"subject"_s).toString(), u"Розмова: 50% \"так\""_s);
        QVERIFY(!options.contains(u"address"_s) && !options.contains(u"addresses"_s));
        const auto attached = qdbus_cast<QList<QDBusUnixFileDescriptor>>(options.value(u"attachment_fds"_s));
        QCOMPARE(attached.size(), 1);
        QFile file;
        QVERIFY(file.open(attached.constFirst().fileDescriptor(), QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), "the text");
        QCOMPARE(failed, failures);
        if (falls)
            EVENTUALLY_COMPARE(program.sent(), (QStringList{u"--utf8"_s, u"--subject"_s, u"Розмова: 50% \"так\""_s, u"--attach"_s, m_path}));
        else
            QCOMPARE(program.sent(), QStringList());
        portal.dropName();
    }

    void offersAreThoseOfThePortal()
    {
        const QDBusConnection desktop = m_bus.connection();
        MockService portal(desktop, u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s);
        QVERIFY(portal.takeName());
        portal.answer = [&](const QDBusMessage &call) {
            portal.send(call.createReply(u"<node><interface name=\"org.freedesktop.portal.Email\"/>"
                                         u"<interface name=\"org.freedesktop.portal.OpenURI\"/></node>"_s));
        };
        std::optional<ShareOffers> offers;
        LookForShareOffers(m_bus.connection(), this, [&](const ShareOffers &found) { offers = found; });
        EVENTUALLY_VERIFY(offers.has_value());
        QVERIFY(offers->email);
        QVERIFY(offers->chooser);
        portal.dropName();
    }

private:
    /// Every request has that outcome; `options` are those of the last one.
    static void answerRequests(MockService &portal, uint outcome, QVariantMap &options)
    {
        portal.answer = [&portal, outcome, &options](const QDBusMessage &call) {
            options = qdbus_cast<QVariantMap>(call.arguments().constLast());
            const QString sender = call.service().mid(1).replace(u'.', u'_');
            const QString path = u"/org/freedesktop/portal/desktop/request/"_s + sender + u'/'
                + options.value(u"handle_token"_s).toString();
            portal.send(call.createReply(QVariant::fromValue(QDBusObjectPath(path))));
            QDBusMessage response = QDBusMessage::createSignal(path, u"org.freedesktop.portal.Request"_s, u"Response"_s);
            portal.send(response << outcome << QVariantMap());
        };
    }

    PrivateBus m_bus;
    QTemporaryDir m_dir;
    QString m_path;
    QStringList m_opened;
};

QTEST_MAIN(HandOnTest)

#include "HandOnTest.moc"

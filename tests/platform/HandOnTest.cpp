// Files handed to the desktop over the bus: the file manager and the portal.

#include "PrivateBus.h"

#include "platform/PortalRequest.h"
#include "platform/RevealInFileManager.h"
#include "platform/ShareFile.h"

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
        QTRY_COMPARE(manager.count(u"ShowItems"_s), 1);
        const QStringList urls = manager.calls.constFirst().arguments().constFirst().toStringList();
        QCOMPARE(urls.size(), 1);
        QCOMPARE(QUrl::fromEncoded(urls.constFirst().toLatin1()).toLocalFile(), m_path);
        manager.dropName();
        QCOMPARE(m_opened, QStringList());
    }

    void withoutAFileManagerOnTheBusTheFolderIsOpened()
    {
        RevealInFileManager(m_bus.connection(), m_path, this);
        QTRY_COMPARE(m_opened, QStringList{m_dir.path()});
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
        portal.answer = [&](const QDBusMessage &call) {
            options = qdbus_cast<QVariantMap>(call.arguments().constLast());
            const QString sender = call.service().mid(1).replace(u'.', u'_');
            const QString path = u"/org/freedesktop/portal/desktop/request/"_s + sender + u'/'
                + options.value(u"handle_token"_s).toString();
            portal.send(call.createReply(QVariant::fromValue(QDBusObjectPath(path))));
            QDBusMessage response = QDBusMessage::createSignal(path, u"org.freedesktop.portal.Request"_s, u"Response"_s);
            portal.send(response << outcome << QVariantMap());
        };
        QObject context;
        OpenWithProgram(m_bus.connection(), {m_path, u"Title"_s, {}}, &context, [] {});
        QTRY_COMPARE(portal.count(u"OpenFile"_s), 1);
        QTRY_VERIFY(context.children().isEmpty()); // the request has had its outcome
        QCOMPARE(options.value(u"ask"_s).toBool(), true);
        QVERIFY(portal.calls.constFirst().arguments().at(1).value<QDBusUnixFileDescriptor>().isValid());
        QCOMPARE(m_opened, falls ? QStringList{m_path} : QStringList());
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
        QTRY_VERIFY(offers.has_value());
        QVERIFY(offers->email);
        QVERIFY(offers->chooser);
        portal.dropName();
    }

private:
    PrivateBus m_bus;
    QTemporaryDir m_dir;
    QString m_path;
    QStringList m_opened;
};

QTEST_MAIN(HandOnTest)

#include "HandOnTest.moc"

#include "intake/AcceptedFiles.h"
#include "platform/ApplicationId.h"
#include "settings/L.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QMimeDatabase>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace tuppi;
using namespace Qt::StringLiterals;

class DesktopFileTest : public QObject
{
    Q_OBJECT

    const QString m_folder = QStringLiteral(DESKTOP_RESOURCES) + u'/';
    const QString m_file = m_folder + applicationId + u".desktop"_s;
    QMap<QString, QString> m_entries;
    QTemporaryDir m_data;

    static QPair<int, QString> run(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        const bool ended = process.waitForFinished() && process.exitStatus() == QProcess::NormalExit;
        return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAll())};
    }

private Q_SLOTS:
    void initTestCase()
    {
        QFile file(m_file);
        QVERIFY(file.open(QIODevice::ReadOnly));
        for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n')) {
            if (const qsizetype equals = line.indexOf(u'='); equals > 0)
                m_entries.insert(line.left(equals), line.mid(equals + 1));
        }
        // The system's list of types and our addition to it, and nothing of this machine's.
        const QString packages = m_data.filePath(u"mime/packages"_s);
        QVERIFY(QDir().mkpath(packages));
        for (const QString &list :
             {u"/usr/share/mime/packages/freedesktop.org.xml"_s, m_folder + applicationId + u".xml"_s})
            QVERIFY2(QFile::copy(list, packages + u'/' + QFileInfo(list).fileName()), qPrintable(list));
        const auto [status, output] = run(u"update-mime-database"_s, {m_data.filePath(u"mime"_s)});
        QVERIFY2(status == 0, qPrintable(output));
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_data.path()));
        qputenv("XDG_DATA_DIRS", QFile::encodeName(m_data.path()));
    }

    void isValid()
    {
        const auto [status, output] = run(u"desktop-file-validate"_s, {m_file});
        QVERIFY2(status == 0, qPrintable(output));
        QCOMPARE(output, QString()); // nor a warning
    }

    void startsTheProgram()
    {
        QCOMPARE(m_entries.value(u"Exec"_s), u"tuppi-transcriber %F"_s);
        QCOMPARE(m_entries.value(u"Icon"_s), u"tuppi-transcriber"_s);
        // Without it a launcher gives no token, and the window does not come forward.
        QCOMPARE(m_entries.value(u"StartupNotify"_s), u"true"_s);
        QCOMPARE(m_entries.value(u"Terminal"_s), u"false"_s);
    }

    void isFoundInEveryLanguageOfTheInterface()
    {
        for (const QString &code : InterfaceLanguageCodes()) {
            const QString language = code == u"zh-Hans"_s ? u"zh_CN"_s : code;
            for (const QString &key : {u"GenericName"_s, u"Comment"_s, u"Keywords"_s}) {
                const QString text = m_entries.value(code == u"en"_s ? key : u"%1[%2]"_s.arg(key, language));
                QVERIFY2(!text.isEmpty(), qPrintable(key + u' ' + code));
                QCOMPARE(text.endsWith(u';'), key == u"Keywords"_s);
            }
        }
    }

    void opensEveryAcceptedKind_data()
    {
        QTest::addColumn<QString>("extension");
        for (const QString &extension : AcceptedExtensions())
            QTest::newRow(qPrintable(extension)) << extension;
    }

    void opensEveryAcceptedKind()
    {
        QFETCH(const QString, extension);
        const QStringList offered = m_entries.value(u"MimeType"_s).split(u';', Qt::SkipEmptyParts);
        const QList<QMimeType> types = QMimeDatabase().mimeTypesForFileName(u"a."_s + extension);
        QVERIFY(!types.isEmpty() && !types.constFirst().isDefault());
        for (const QMimeType &type : types)
            QVERIFY2(offered.contains(type.name()), qPrintable(type.name()));
    }

    void namesEachTypeOnce()
    {
        QStringList offered = m_entries.value(u"MimeType"_s).split(u';', Qt::SkipEmptyParts);
        const qsizetype count = offered.size();
        QCOMPARE(offered.removeDuplicates(), 0);
        QVERIFY(count >= AcceptedExtensions().size() - 2); // two pairs of them share a type
    }
};

QTEST_GUILESS_MAIN(DesktopFileTest)

#include "DesktopFileTest.moc"

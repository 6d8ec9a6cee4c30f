#include "settings/Defaults.h"

#include "engine/DebugLog.h"
#include "support/Support.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;

namespace {

class DefaultsTest : public testing::Test
{
protected:
    QString store() const { return m_folder.filePath(u"config/settings.json"_s); }

    void put(const QByteArray &json)
    {
        QDir().mkpath(m_folder.filePath(u"config"_s));
        test::replaceFile(store(), json);
    }

    QJsonObject stored() const { return test::object(test::readFile(store())); }

    /// What an object reads that shares no cache in memory with the one that wrote.
    QVariant readAfresh(const QString &key)
    {
        const QString copy = m_folder.filePath(u"copy-%1.json"_s.arg(++m_copies));
        EXPECT_TRUE(QFile::copy(store(), copy));
        const Defaults defaults(copy);
        return defaults.value(key);
    }

    QStringList asides() const
    {
        return QDir(m_folder.filePath(u"config"_s)).entryList({u"settings.json.garbled-*"_s}, QDir::Files, QDir::Name);
    }
    QByteArray aside(const QString &name) const { return test::readFile(m_folder.filePath(u"config/"_s + name)); }

    QTemporaryDir m_folder;
    const test::HomeFolder m_home{m_folder.filePath(u"home"_s)};
    int m_copies = 0;
};

TEST_F(DefaultsTest, KeysNeverWrittenReadAsTheirDefaults)
{
    const Defaults defaults(store());
    EXPECT_EQ(defaults.text(u"engine"_s), u"auto"_s);
    EXPECT_EQ(defaults.text(u"language"_s), u"en"_s);
    EXPECT_TRUE(defaults.isOn(u"speakers"_s));
    EXPECT_FALSE(defaults.isOn(u"quickMode"_s));
    EXPECT_TRUE(defaults.isOn(u"notify"_s));
    EXPECT_TRUE(defaults.isOn(u"sounds"_s));
    EXPECT_EQ(defaults.text(u"txtFormat"_s), u"timestamps"_s);
    EXPECT_EQ(defaults.value(u"waitingQueue"_s), QVariant(QVariantList()));
    EXPECT_FALSE(defaults.value(u"AppleLanguages"_s).isValid());
    EXPECT_FALSE(defaults.value(u"noSuchKey"_s).isValid());
    for (const DefaultKey &key : DefaultsTable())
        EXPECT_FALSE(defaults.contains(key.name)) << key.name.toStdString();
}

TEST_F(DefaultsTest, StoredNoIsKeptApartFromAbsent)
{
    {
        Defaults defaults(store());
        ASSERT_TRUE(defaults.setValue(u"speakers"_s, false));
        EXPECT_TRUE(defaults.contains(u"speakers"_s));
        EXPECT_FALSE(defaults.isOn(u"speakers"_s));
    }
    EXPECT_EQ(readAfresh(u"speakers"_s), QVariant(false));
    EXPECT_EQ(readAfresh(u"notify"_s), QVariant(true));
    EXPECT_EQ(stored().value(u"speakers"_s), QJsonValue(false));
    EXPECT_FALSE(stored().contains(u"notify"_s));
}

TEST_F(DefaultsTest, TypesSurviveANewObject)
{
    const QVariantList queue{
        QVariantMap{{u"path"_s, u"/a/b — c.m4a"_s}, {u"speakers"_s, true}, {u"quick"_s, false}},
        QVariantMap{{u"path"_s, u"/d\n\"e\".m4a"_s}, {u"nested"_s, QVariantList{QVariantMap{{u"x"_s, u"y"_s}}}}}};
    const QVariantMap values{{u"yes"_s, true},
                             {u"no"_s, false},
                             {u"oneItem"_s, QVariantList{u"uk"_s}},
                             {u"emptyList"_s, QVariantList()},
                             {u"emptyText"_s, u""_s},
                             {u"textOfANumber"_s, u"12"_s},
                             {u"textOfABoolean"_s, u"false"_s},
                             {u"textWithAnAt"_s, u"@ByteArray(x)"_s},
                             {u"queue"_s, queue}};
    {
        Defaults defaults(store());
        ASSERT_TRUE(defaults.setValues(values));
    }
    for (auto entry = values.begin(); entry != values.end(); ++entry) {
        const QVariant read = readAfresh(entry.key());
        EXPECT_EQ(read.typeId(), entry.value().typeId()) << entry.key().toStdString();
        EXPECT_EQ(read, entry.value()) << entry.key().toStdString();
    }
}

TEST_F(DefaultsTest, StoredEmptyListIsNotAbsent)
{
    Defaults defaults(store());
    ASSERT_TRUE(defaults.setValue(u"AppleLanguages"_s, QVariantList()));
    EXPECT_TRUE(defaults.contains(u"AppleLanguages"_s));
}

TEST_F(DefaultsTest, JsonNullReadsAsAbsent)
{
    put(R"({"speakers":null,"engine":null})");
    const Defaults defaults(store());
    EXPECT_FALSE(defaults.contains(u"speakers"_s));
    EXPECT_TRUE(defaults.isOn(u"speakers"_s));
    EXPECT_EQ(defaults.text(u"engine"_s), u"auto"_s);
}

TEST_F(DefaultsTest, RemovedKeyReadsAsItsDefaultAgain)
{
    Defaults defaults(store());
    ASSERT_TRUE(defaults.setValue(u"engine"_s, u"whisper"_s));
    ASSERT_TRUE(defaults.remove(u"engine"_s));
    EXPECT_FALSE(defaults.contains(u"engine"_s));
    EXPECT_EQ(defaults.text(u"engine"_s), u"auto"_s);
    EXPECT_FALSE(stored().contains(u"engine"_s));
}

TEST_F(DefaultsTest, ValuesAreInTheFileWhenTheCallReturns)
{
    Defaults defaults(store());
    ASSERT_TRUE(defaults.setValue(u"engine"_s, u"whisper"_s));
    EXPECT_EQ(stored().value(u"engine"_s), QJsonValue(u"whisper"_s));
    ASSERT_TRUE(defaults.setValue(u"engine"_s, u"parakeet"_s));
    EXPECT_EQ(stored().value(u"engine"_s), QJsonValue(u"parakeet"_s));
}

TEST_F(DefaultsTest, AnotherProcessesKeysAreKept)
{
    Defaults defaults(store());
    ASSERT_TRUE(defaults.setValue(u"engine"_s, u"whisper"_s));
    put(R"({"engine":"whisper","txtFormat":"plain"})");
    ASSERT_TRUE(defaults.setValue(u"sounds"_s, false));
    EXPECT_EQ(stored(), test::object(R"({"engine":"whisper","txtFormat":"plain","sounds":false})"));
    EXPECT_EQ(defaults.text(u"txtFormat"_s), u"plain"_s);
}

TEST_F(DefaultsTest, EmptyFileIsAnEmptyStore)
{
    put("");
    Defaults defaults(store());
    EXPECT_FALSE(defaults.contains(u"engine"_s));
    EXPECT_TRUE(asides().isEmpty());
}

TEST_F(DefaultsTest, FolderOfTheStoreIsMade)
{
    Defaults defaults(m_folder.filePath(u"a/b/c/settings.json"_s));
    EXPECT_TRUE(defaults.setValue(u"engine"_s, u"whisper"_s));
    EXPECT_TRUE(QFile::exists(m_folder.filePath(u"a/b/c/settings.json"_s)));
}

TEST_F(DefaultsTest, UserPathIsBelowTheHome)
{
    EXPECT_EQ(Defaults::userPath(), m_folder.filePath(u"home/.config/tuppi-transcriber/settings.json"_s));
}

class GarbledDefaults : public DefaultsTest, public testing::WithParamInterface<QByteArray>
{
};

TEST_P(GarbledDefaults, IsSetAsideWithItsBytesAndTheStoreStartsWithDefaults)
{
    put(GetParam());
    Defaults defaults(store());
    EXPECT_EQ(defaults.text(u"engine"_s), u"auto"_s);
    EXPECT_FALSE(defaults.contains(u"engine"_s));
    ASSERT_EQ(asides().size(), 1);
    EXPECT_EQ(defaults.setAside(), m_folder.filePath(u"config/"_s + asides().first()));
    EXPECT_EQ(Defaults(store()).setAside(), QString()) << "told once";
    EXPECT_EQ(aside(asides().first()), GetParam());
    ASSERT_TRUE(defaults.setValue(u"engine"_s, u"whisper"_s));
    EXPECT_EQ(stored(), test::object(R"({"engine":"whisper"})"));
    EXPECT_EQ(aside(asides().first()), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Defaults, GarbledDefaults,
                         testing::Values(QByteArray("{\"engine\":\"whis"), QByteArray("[1,2]"), QByteArray("null"),
                                         QByteArray("\x00\xff\x00", 3), QByteArray("[general]\nengine=auto\n"),
                                         QByteArray("{\"engine\":\"\xc3\x28\"}"), QByteArray(" \n")));

TEST_F(DefaultsTest, GarbledFileIsToldInTheLog)
{
    put("{\"engine\":");
    const Defaults defaults(store());
    ASSERT_EQ(asides().size(), 1);
    const QString log = QString::fromUtf8(test::readFile(DebugLogPath()));
    EXPECT_TRUE(log.endsWith(u"settings %1 could not be read; set aside as %2, starting with defaults\n"_s.arg(
        store(), m_folder.filePath(u"config/"_s + asides().first()))))
        << log.toStdString();
    EXPECT_EQ(log.count(u'\n'), 1);
}

TEST_F(DefaultsTest, GarbledTwiceLeavesTwoAsides)
{
    put("first garbage");
    {
        Defaults defaults(store());
        ASSERT_TRUE(defaults.setValue(u"engine"_s, u"whisper"_s));
    }
    put("second, longer garbage");
    {
        const Defaults defaults(store());
        EXPECT_FALSE(defaults.contains(u"engine"_s));
    }
    ASSERT_EQ(asides().size(), 2);
    QList<QByteArray> contents{aside(asides().at(0)), aside(asides().at(1))};
    std::sort(contents.begin(), contents.end());
    EXPECT_EQ(contents, (QList<QByteArray>{"first garbage", "second, longer garbage"}));
}

TEST_F(DefaultsTest, FileGarbledWhileOpenIsSetAsideByTheNextWrite)
{
    Defaults defaults(store());
    ASSERT_TRUE(defaults.setValue(u"engine"_s, u"whisper"_s));
    put("garbage of another program");
    ASSERT_TRUE(defaults.setValue(u"sounds"_s, false));
    ASSERT_EQ(asides().size(), 1);
    EXPECT_EQ(aside(asides().first()), "garbage of another program");
    EXPECT_EQ(stored().value(u"sounds"_s), QJsonValue(false));
}

TEST_F(DefaultsTest, FailedWriteIsReportedHoldsForThisRunAndIsMadeUpFor)
{
    const QString blocked = m_folder.filePath(u"blocked"_s);
    test::writeFile(blocked, "a file where the folder should be");
    Defaults defaults(blocked + u"/settings.json"_s);
    EXPECT_FALSE(defaults.setValue(u"engine"_s, u"whisper"_s));
    EXPECT_EQ(defaults.text(u"engine"_s), u"whisper"_s);
    EXPECT_FALSE(defaults.setValue(u"sounds"_s, false));

    ASSERT_TRUE(QFile::remove(blocked));
    ASSERT_TRUE(QDir().mkpath(blocked));
    EXPECT_TRUE(defaults.setValue(u"txtFormat"_s, u"plain"_s));
    EXPECT_EQ(test::object(test::readFile(blocked + u"/settings.json"_s)),
              test::object(R"({"engine":"whisper","sounds":false,"txtFormat":"plain"})"));
}

TEST_F(DefaultsTest, WriteThatEndsInTheMiddleLeavesTheOldFile)
{
    Defaults defaults(store());
    ASSERT_TRUE(defaults.setValue(u"engine"_s, u"whisper"_s));
    const QByteArray before = test::readFile(store());

    std::signal(SIGXFSZ, SIG_IGN);
    rlimit unlimited{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    const rlimit small{100, unlimited.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool stored = defaults.setValue(u"waitingQueue"_s, QVariantList(100, u"a long text in the list"_s));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &unlimited), 0);

    EXPECT_FALSE(stored);
    EXPECT_EQ(test::readFile(store()), before);
    EXPECT_TRUE(defaults.setValue(u"sounds"_s, false));
    EXPECT_EQ(this->stored().value(u"waitingQueue"_s).toArray().size(), 100);
}

TEST_F(DefaultsTest, EveryKeyOfTheTableIsThereOnce)
{
    QStringList names;
    for (const DefaultKey &key : DefaultsTable())
        names.append(key.name);
    names.sort();
    EXPECT_EQ(names, (QStringList{u"AppleLanguages"_s, u"TranscriberText"_s, u"TranscriberViewer"_s, u"engine"_s, u"language"_s, u"notify"_s, u"quickMode"_s,
                                  u"saveFolder"_s, u"sounds"_s, u"speakers"_s, u"startInFlight"_s, u"txtFormat"_s, u"waitingQueue"_s, u"windowFrame"_s}));
}

} // namespace

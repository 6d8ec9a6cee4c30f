#include "AppTest.h"

#include "engine/EngineInstaller.h"

#include <QDir>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::waitFor;

namespace {

/// Installers of the test's own, in the scripted engine's folder.
class EngineSetup : public test::AppTest
{
protected:
    void launchWith(const QByteArray &bash)
    {
        const QString installer = m_engine.path(u"install-engine"_s);
        test::writeFile(installer, "root=${BASH_SOURCE[0]%/*}\nexec {never}<>\"$root/never\"\n" + bash);
        create();
        m_app->setEngineInstaller(installer);
        m_app->applicationDidFinishLaunching(AppDelegate::Face::Terminal);
    }
};

TEST_F(EngineSetup, ComesBeforeEveryCommandAndIsNotWaitedFor)
{
    launchWith("printf '%s' \"$*\" >\"$root/asked\"\n"
               "until [[ -e $root/gates/setup || ! -d $root/gates ]]; do read -rt 0.01 -u \"$never\"; done\nexit 0\n");
    EXPECT_FALSE(jobs().polling);
    ASSERT_TRUE(waitFor([&] { return test::readFile(m_engine.path(u"asked"_s)) == "--link"; }));
    m_app->enqueue({m_engine.recording(u"a.m4a"_s)}, m_choices);
    EXPECT_EQ(m_engine.calls().size(), 0);
    m_engine.answerHistory("[]");
    m_engine.openGate("setup");
    EXPECT_TRUE(waitFor([&] { return jobs().loaded; }));
    EXPECT_TRUE(processCalls(1));
    EXPECT_TRUE(waitFor([&] { return m_engine.count(u"resume"_s) == 1; }));
    EXPECT_TRUE(m_failures.isEmpty());
}

TEST_F(EngineSetup, AFailureIsToldAndTheEngineAskedAllTheSame)
{
    m_engine.answerHistory("[]");
    launchWith("echo 'Error: There is no room.' >&2; exit 1\n");
    EXPECT_TRUE(waitFor([&] { return jobs().loaded; }));
    EXPECT_EQ(m_failures, (QList<Failure>{{u"The engine could not be set up"_s, u"There is no room."_s}}));
}

TEST_F(EngineSetup, AnotherEngineIsNoFailure)
{
    m_engine.answerHistory("[]");
    launchWith("echo 'Error: Another engine.' >&2; exit 3\n");
    EXPECT_TRUE(waitFor([&] { return jobs().loaded; }));
    EXPECT_TRUE(m_failures.isEmpty());
}

TEST_F(EngineSetup, AnInstallerThatIsGoneIsAFailure)
{
    m_engine.answerHistory("[]");
    create();
    m_app->setEngineInstaller(m_engine.path(u"gone"_s));
    m_app->applicationDidFinishLaunching(AppDelegate::Face::Terminal);
    EXPECT_TRUE(waitFor([&] { return jobs().loaded; }));
    EXPECT_EQ(m_failures.size(), 1);
}

TEST(EngineInstaller, StandsInTheInstalledLayoutOnly)
{
    const QTemporaryDir prefix;
    const QString bin = prefix.filePath(u"bin"_s), engine = prefix.filePath(u"lib/tuppi-transcriber/engine"_s);
    EXPECT_EQ(EngineInstallerFor(bin), QString());
    ASSERT_TRUE(QDir().mkpath(engine));
    EXPECT_EQ(EngineInstallerFor(bin), QString());
    test::writeFile(engine + u"/install-engine"_s, "");
    EXPECT_EQ(EngineInstallerFor(bin), engine + u"/install-engine"_s);
}

} // namespace

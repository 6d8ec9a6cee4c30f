// Where a viewer page may go, what it may load, what is run in it, and which window it gets.

#include "viewer/PageRules.h"
#include "viewer/PageScripts.h"
#include "viewer/ResultPlan.h"

#include "support/Support.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::object;
using test::writeFile;

namespace {

struct Address
{
    const char *name;
    const char *url;
    bool allowed;
};

class Navigation : public testing::TestWithParam<Address>
{
};

TEST_P(Navigation, IsAllowedToViewerPagesOnly)
{
    EXPECT_EQ(IsNavigationAllowed(QUrl(QString::fromUtf8(GetParam().url))), GetParam().allowed);
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, Navigation,
    testing::Values(Address{"ThePage", "file:///calls/a/viewer.html", true},
                    Address{"AnyFolder", "file:///elsewhere/viewer.html", true},
                    Address{"APlaceInIt", "file:///calls/a/viewer.html#line-3", true},
                    Address{"Escaped", "file:///calls/a%20b/viewer.html", true},
                    Address{"Blank", "about:blank", true}, Address{"Srcdoc", "about:srcdoc", true},
                    Address{"AnotherFile", "file:///calls/a/audio.m4a", false},
                    Address{"AnotherName", "file:///calls/a/myviewer.html", false},
                    Address{"AFolderOfThatName", "file:///calls/viewer.html/x.html", false},
                    Address{"Web", "http://example.org/viewer.html", false},
                    Address{"SecureWeb", "https://example.org/viewer.html", false},
                    Address{"Data", "data:text/html,viewer.html", false},
                    Address{"Script", "javascript:viewer.html", false},
                    Address{"Mail", "mailto:viewer.html", false}, Address{"Nothing", "", false}),
    test::caseName);

class Requests : public testing::Test
{
protected:
    void SetUp() override
    {
        QDir().mkpath(place(u"a b/Technical files"_s));
        QDir().mkpath(place(u"a b c"_s));
        for (const QString &file : {u"a b/viewer.html"_s, u"a b/ä#?.m4a"_s, u"a b/Technical files/x"_s,
                                    u"a b c/secret"_s, u"secret"_s})
            writeFile(place(file), "x");
        QFile::link(place(u"secret"_s), place(u"a b/outward"_s));
        QFile::link(u"viewer.html"_s, place(u"a b/inward"_s));
        QFile::link(place(u"a b c"_s), place(u"a b/folder"_s));
    }
    QString place(const QString &name) const { return QFileInfo(m_root.path()).canonicalFilePath() + u'/' + name; }
    bool allowed(const QUrl &url) const { return IsRequestAllowed(url, place(u"a b"_s)); }
    bool allowedFile(const QString &name) const { return allowed(QUrl::fromLocalFile(place(name))); }

    QTemporaryDir m_root;
};

TEST_F(Requests, ForFilesInsideTheFolderAreAllowed)
{
    EXPECT_TRUE(allowedFile(u"a b/viewer.html"_s));
    EXPECT_TRUE(allowedFile(u"a b/ä#?.m4a"_s));
    EXPECT_TRUE(allowedFile(u"a b/Technical files/x"_s));
    EXPECT_TRUE(allowedFile(u"a b/Technical files/../viewer.html"_s));
    EXPECT_TRUE(allowedFile(u"a b/inward"_s));
}

TEST_F(Requests, ForFilesOutsideAreRefused)
{
    EXPECT_FALSE(allowedFile(u"secret"_s));
    EXPECT_FALSE(allowedFile(u"a b/../secret"_s));
    EXPECT_FALSE(allowed(QUrl(u"file://"_s + place(u"a%20b/%2e%2e/secret"_s))));
    EXPECT_FALSE(allowedFile(u"a b c/secret"_s)) << "a folder whose name begins like ours";
    EXPECT_FALSE(allowedFile(u"a b/outward"_s));
    EXPECT_FALSE(allowedFile(u"a b/folder/secret"_s));
    EXPECT_FALSE(allowedFile(u"a b"_s));
    EXPECT_FALSE(allowedFile(u"a b/missing"_s));
    EXPECT_FALSE(allowed(QUrl(u"file:///etc/passwd"_s)));
    EXPECT_FALSE(allowed(QUrl(u"file://otherhost"_s + place(u"a%20b/viewer.html"_s))));
}

TEST_F(Requests, ForAnythingElseAreRefused)
{
    for (const char *url : {"http://127.0.0.1/x", "https://example.org/x", "ws://127.0.0.1/", "wss://example.org/",
                            "ftp://example.org/x", "qrc:/viewer/channel.js", "chrome://version", "devtools://x",
                            "view-source:file:///x", "filesystem:file:///x", ""})
        EXPECT_FALSE(allowed(QUrl(QString::fromUtf8(url)))) << url;
    EXPECT_TRUE(allowed(QUrl(u"data:image/png;base64,AA=="_s)));
    EXPECT_TRUE(allowed(QUrl(u"blob:null/1234"_s)));
}

TEST_F(Requests, WithoutAFolderNoFileIsAllowed)
{
    EXPECT_FALSE(IsRequestAllowed(QUrl::fromLocalFile(place(u"a b/viewer.html"_s)), {}));
}

TEST(TheScripts, HandOverTheTranslations)
{
    EXPECT_EQ(viewerI18nScript({}, u"en"_s), u"window.TUPPI_I18N={};window.TUPPI_RTL=false;"_s);
    EXPECT_EQ(viewerI18nScript({{u"Edit \"%@\""_s, u"a\u2028b 100% </script>"_s}}, u"ar"_s),
              uR"(window.TUPPI_I18N={"Edit \"%@\"":"a\u2028b 100% </script>"};window.TUPPI_RTL=true;)"_s);
}

TEST(TheScripts, KnowWhichLanguagesRunFromTheRight)
{
    for (const QString &language : {u"ar"_s, u"ar-EG"_s, u"he"_s, u"he-IL"_s})
        EXPECT_TRUE(IsRightToLeft(language)) << qPrintable(language);
    for (const QString &language : {u"en"_s, u"uk"_s, u"zh-Hans"_s, u"hi"_s, u"es"_s, QString()})
        EXPECT_FALSE(IsRightToLeft(language)) << qPrintable(language);
}

TEST(TheScripts, TellByItsLettersWhichWayATextRuns)
{
    for (const QString &text : {u"مقابلة"_s, u"# Interview\n\n## Full text\n\nصباح الخير، وشكرًا على حضوركم اليوم."_s, u"1. שלום"_s})
        EXPECT_TRUE(RunsFromTheRight(text)) << qPrintable(text);
    for (const QString &text : {QString(), u"12:30 —"_s, u"Interview"_s, u"مقابلة, an interview"_s, u"Розмова"_s, u"采访"_s})
        EXPECT_FALSE(RunsFromTheRight(text)) << qPrintable(text);
}

TEST(TheScripts, SwitchTheTab)
{
    EXPECT_EQ(ShowTabScript(true), u"window.showTab&&showTab('summary')"_s);
    EXPECT_EQ(ShowTabScript(false), u"window.showTab&&showTab('transcript')"_s);
    EXPECT_EQ(BeginWithSummaryScript(), u"window.TUPPI_TAB='summary';"_s);
}

TEST(TheScripts, KeepUnusualTextsWhole)
{
    const QString text = u"\"'\\ \u2028\u2029 \U0001F408 \u200Fأ "_s + QChar(0xd83d);
    EXPECT_EQ(ScriptText(QJsonArray{text}), u"[\"\\\"'\\\\ \\u2028\\u2029 \U0001F408 \u200Fأ \\ud83d\"]"_s);
}

class Plans : public testing::Test
{
protected:
    QString dir(const QStringList &files) const
    {
        const QString path = m_root.filePath(u"call"_s);
        for (const QString &file : files) {
            QDir().mkpath(QFileInfo(path + u'/' + file).path());
            writeFile(path + u'/' + file, "x");
        }
        return path;
    }
    static std::optional<ResultPlan> plan(const QString &callDir, bool summary = false)
    {
        return PlanResult({{u"call_dir"_s, callDir}, {u"title"_s, u"Talk"_s}}, summary);
    }

    QTemporaryDir m_root;
};

TEST_F(Plans, AViewerPageComesFirst)
{
    const QString callDir = dir({u"viewer.html"_s, u"call.md"_s});
    const ResultPlan expected{callDir, callDir + u"/viewer.html"_s, true, u"Talk"_s};
    EXPECT_EQ(plan(callDir, true), expected);
    EXPECT_EQ(expected.key(), callDir + u"#viewer"_s);
    EXPECT_EQ(expected.frame(), u"TranscriberViewer"_s);
    EXPECT_FALSE(plan(callDir, false)->summary);
}

TEST_F(Plans, TheSecondLayoutHasItsPageFurtherDown)
{
    const QString callDir = dir({u"Technical files/viewer.html"_s, u"Summary.md"_s});
    EXPECT_EQ(plan(callDir)->page, callDir + u"/Technical files/viewer.html"_s);
}

TEST_F(Plans, WithoutAPageItIsText)
{
    const QString callDir = dir({u"call.md"_s});
    const ResultPlan expected{callDir, {}, false, u"Talk — Summary and Text"_s};
    EXPECT_EQ(plan(callDir, true), expected);
    EXPECT_EQ(expected.key(), callDir + u"#text"_s);
    EXPECT_EQ(expected.frame(), u"TranscriberText"_s);
}

TEST_F(Plans, WithNeitherThereIsNoWindow)
{
    EXPECT_EQ(plan(dir({u"transcript.txt"_s})), std::nullopt);
    EXPECT_EQ(plan({}), std::nullopt);
    EXPECT_EQ(PlanResult({{u"title"_s, u"Talk"_s}}, true), std::nullopt);
    EXPECT_EQ(PlanResult({{u"call_dir"_s, QJsonValue::Null}}, true), std::nullopt);
}

TEST_F(Plans, ARowWithoutATitleIsATranscript)
{
    const QString callDir = dir({u"viewer.html"_s});
    EXPECT_EQ(PlanResult({{u"call_dir"_s, callDir}}, false)->title, u"Transcript"_s);
    EXPECT_EQ(PlanResult({{u"call_dir"_s, callDir}, {u"title"_s, QJsonValue::Null}}, false)->title, u"Transcript"_s);
}

} // namespace

// What a viewer page asks for, what the engine is told, what the page is answered.

#include "viewer/ViewerMessage.h"

#include "support/Support.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::object;

namespace {

QByteArray shown(const ViewerAnswer &answer)
{
    return answer.callback.toUtf8() + ' ' + QJsonDocument(answer.arguments).toJson(QJsonDocument::Compact);
}

struct Asked
{
    const char *name;
    const char *body;
    QStringList arguments;
};

class Asking : public testing::TestWithParam<Asked>
{
};

TEST_P(Asking, TellsTheEngine)
{
    EXPECT_EQ(ReadViewerMessage(object(GetParam().body), u"j1"_s).arguments, GetParam().arguments);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, Asking,
    testing::Values(
        Asked{"Rename", R"({"kind":"rename","old":"Speaker 1","name":"Anna"})",
              {u"speaker"_s, u"j1"_s, u"--rename"_s, u"--old=Speaker 1"_s, u"--new=Anna"_s, u"--json"_s}},
        Asked{"RenameOfNothingToNothing", R"({"kind":"rename","old":"","name":""})",
              {u"speaker"_s, u"j1"_s, u"--rename"_s, u"--old="_s, u"--new="_s, u"--json"_s}},
        Asked{"Speaker", R"({"kind":"speaker","index":4,"name":"Anna"})",
              {u"speaker"_s, u"j1"_s, u"4"_s, u"--json"_s, u"--name=Anna"_s}},
        Asked{"SpeakerWithAnEmptyName", R"({"kind":"speaker","index":4,"name":""})",
              {u"speaker"_s, u"j1"_s, u"4"_s, u"--json"_s, u"--name="_s}},
        Asked{"SpeakerNull", R"({"kind":"speaker","index":4,"name":null})",
              {u"speaker"_s, u"j1"_s, u"4"_s, u"--json"_s, u"--none"_s}},
        Asked{"SpeakerWithoutAName", R"({"kind":"speaker","index":4})",
              {u"speaker"_s, u"j1"_s, u"4"_s, u"--json"_s, u"--none"_s}},
        Asked{"SpeakerWithANumberForAName", R"({"kind":"speaker","index":4,"name":7})",
              {u"speaker"_s, u"j1"_s, u"4"_s, u"--json"_s, u"--none"_s}},
        Asked{"Join", R"({"kind":"join","index":3})", {u"split"_s, u"j1"_s, u"3"_s, u"--join"_s, u"--json"_s}},
        Asked{"Split", R"({"kind":"split","index":3,"pos":12})",
              {u"split"_s, u"j1"_s, u"3"_s, u"12"_s, u"--json"_s}},
        Asked{"Edit", R"({"kind":"edit","index":0,"text":"a"})",
              {u"edit"_s, u"j1"_s, u"0"_s, u"--json"_s, u"--"_s, u"a"_s}},
        Asked{"KindText", R"({"kind":"text","index":0,"text":"a"})",
              {u"edit"_s, u"j1"_s, u"0"_s, u"--json"_s, u"--"_s, u"a"_s}},
        Asked{"AnUnknownKindIsAnEdit", R"({"kind":"Rename","index":0,"text":"a"})",
              {u"edit"_s, u"j1"_s, u"0"_s, u"--json"_s, u"--"_s, u"a"_s}},
        Asked{"AKindOfAnotherTypeIsAnEdit", R"({"kind":1,"index":0,"text":"a"})",
              {u"edit"_s, u"j1"_s, u"0"_s, u"--json"_s, u"--"_s, u"a"_s}},
        Asked{"WithoutAKindItIsAnEdit", R"({"index":7,"text":"--json x"})",
              {u"edit"_s, u"j1"_s, u"7"_s, u"--json"_s, u"--"_s, u"--json x"_s}},
        Asked{"AnEmptyEdit", R"({"index":7,"text":""})",
              {u"edit"_s, u"j1"_s, u"7"_s, u"--json"_s, u"--"_s, QString()}},
        Asked{"UnusualTexts", "{\"index\":1,\"text\":\"\\\"'\\\\ \xE2\x80\xA8\xE2\x80\xA9 \xF0\x9F\x90\x88 \xE2\x80\x8F\xD8\xA3 \\ud83d\"}",
              {u"edit"_s, u"j1"_s, u"1"_s, u"--json"_s, u"--"_s,
               QString(u"\"'\\ \u2028\u2029 \U0001F408 \u200Fأ "_s + QChar(0xd83d))}},
        Asked{"ALargeIndex", R"({"kind":"join","index":100000})",
              {u"split"_s, u"j1"_s, u"100000"_s, u"--join"_s, u"--json"_s}},
        Asked{"AnIndexBeyond32Bits", R"({"kind":"join","index":4294967296})",
              {u"split"_s, u"j1"_s, u"4294967296"_s, u"--join"_s, u"--json"_s}},
        Asked{"AnIndexBeyondExactness", R"({"kind":"join","index":1e21})",
              {u"split"_s, u"j1"_s, u"1e+21"_s, u"--join"_s, u"--json"_s}},
        Asked{"AFraction", R"({"kind":"split","index":2.5,"pos":-1})",
              {u"split"_s, u"j1"_s, u"2.5"_s, u"-1"_s, u"--json"_s}},
        Asked{"AWholeNumberWithAPoint", R"({"kind":"split","index":2.0,"pos":3})",
              {u"split"_s, u"j1"_s, u"2"_s, u"3"_s, u"--json"_s}}),
    test::caseName);

struct Refused
{
    const char *name;
    const char *body;
    const char *answer;
};

class Refusing : public testing::TestWithParam<Refused>
{
};

TEST_P(Refusing, RunsNothing)
{
    const ViewerMessage message = ReadViewerMessage(object(GetParam().body), u"j1"_s);
    EXPECT_EQ(message.arguments, QStringList());
    EXPECT_EQ(shown(Refusal(message).answer), QByteArray(GetParam().answer));
}

INSTANTIATE_TEST_SUITE_P(
    WrongKeys, Refusing,
    testing::Values(
        Refused{"RenameWithoutOld", R"({"kind":"rename","name":"Anna"})",
                R"(tuppiRenamed [false,"Could not rename","","Anna"])"},
        Refused{"RenameWithoutName", R"({"kind":"rename","old":"A"})", R"(tuppiRenamed [false,"Could not rename","A",""])"},
        Refused{"RenameToANumber", R"({"kind":"rename","old":"A","name":1})",
                R"(tuppiRenamed [false,"Could not rename","A",""])"},
        Refused{"RenameFromANumber", R"({"kind":"rename","old":1,"name":"B"})",
                R"(tuppiRenamed [false,"Could not rename","","B"])"},
        Refused{"RenameToNull", R"({"kind":"rename","old":"A","name":null})",
                R"(tuppiRenamed [false,"Could not rename","A",""])"},
        Refused{"SpeakerWithNullForIndex", R"({"kind":"speaker","index":null,"name":"A"})",
                R"(tuppiSpeakerSaved [0,false,"Could not save this change",null])"},
        Refused{"JoinWithoutIndex", R"({"kind":"join"})", R"(tuppiJoined [0,false,"Could not save this change"])"},
        Refused{"SplitWithATextForPosition", R"({"kind":"split","index":2,"pos":"5"})",
                R"(tuppiSplit [2,false,"Could not save this change"])"},
        Refused{"EditWithANumberForText", R"({"index":5,"text":7})",
                R"(tuppiSaved [5,false,"Could not save this change",""])"},
        Refused{"SpeakerWithoutIndex", R"({"kind":"speaker","name":"A"})",
                R"(tuppiSpeakerSaved [0,false,"Could not save this change",null])"},
        Refused{"JoinWithATextForIndex", R"({"kind":"join","index":"3"})",
                R"(tuppiJoined [0,false,"Could not save this change"])"},
        Refused{"JoinWithTrueForIndex", R"({"kind":"join","index":true})",
                R"(tuppiJoined [0,false,"Could not save this change"])"},
        Refused{"SplitWithoutPosition", R"({"kind":"split","index":2})",
                R"(tuppiSplit [2,false,"Could not save this change"])"},
        Refused{"SplitWithFalseForPosition", R"({"kind":"split","index":2,"pos":false})",
                R"(tuppiSplit [2,false,"Could not save this change"])"},
        Refused{"SplitWithoutIndex", R"({"kind":"split","pos":2})", R"(tuppiSplit [0,false,"Could not save this change"])"},
        Refused{"EditWithoutText", R"({"index":5})", R"(tuppiSaved [5,false,"Could not save this change",""])"},
        Refused{"EditWithoutIndex", R"({"text":"t"})", R"(tuppiSaved [0,false,"Could not save this change","t"])"},
        Refused{"EditWithNullText", R"({"index":5,"text":null})", R"(tuppiSaved [5,false,"Could not save this change",""])"},
        Refused{"NothingAtAll", "{}", R"(tuppiSaved [0,false,"Could not save this change",""])"}),
    test::caseName);

class WithoutATranscript : public testing::TestWithParam<Refused>
{
};

TEST_P(WithoutATranscript, EveryMessageIsRefused)
{
    const ViewerMessage message = ReadViewerMessage(object(GetParam().body), {});
    EXPECT_EQ(message.arguments, QStringList());
    EXPECT_EQ(shown(Refusal(message).answer), QByteArray(GetParam().answer));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, WithoutATranscript,
    testing::Values(
        Refused{"Rename", R"({"kind":"rename","old":"A","name":"B"})", R"(tuppiRenamed [false,"Could not rename","A","B"])"},
        Refused{"Speaker", R"({"kind":"speaker","index":1,"name":"B"})",
                R"(tuppiSpeakerSaved [1,false,"Could not save this change",null])"},
        Refused{"Join", R"({"kind":"join","index":1})", R"(tuppiJoined [1,false,"Could not save this change"])"},
        Refused{"Split", R"({"kind":"split","index":1,"pos":2})", R"(tuppiSplit [1,false,"Could not save this change"])"},
        Refused{"Edit", R"({"index":1,"text":"t"})", R"(tuppiSaved [1,false,"Could not save this change","t"])"}),
    test::caseName);

struct Answered
{
    const char *name;
    const char *body;
    RawReply reply;
    const char *answer;
    bool changesList = false;
};

class Answering : public testing::TestWithParam<Answered>
{
};

TEST_P(Answering, TellsThePage)
{
    const ViewerReply reply = ReadViewerReply(ReadViewerMessage(object(GetParam().body), u"j1"_s), GetParam().reply);
    EXPECT_EQ(shown(reply.answer), QByteArray(GetParam().answer));
    EXPECT_EQ(reply.changesList, GetParam().changesList);
}

constexpr auto rename = R"({"kind":"rename","old":"Speaker 1","name":"Anna"})";
constexpr auto speaker = R"({"kind":"speaker","index":4,"name":"Anna"})";
constexpr auto join = R"({"kind":"join","index":4})";
constexpr auto split = R"({"kind":"split","index":4,"pos":2})";
constexpr auto edit = R"({"index":4,"text":"t"})";

INSTANTIATE_TEST_SUITE_P(
    Successes, Answering,
    testing::Values(
        Answered{"RenamedInMany", rename, {0, R"({"changed":3})", {}},
                 R"(tuppiRenamed [true,"Renamed in 3 lines","Speaker 1","Anna"])"},
        Answered{"RenamedInOne", rename, {0, R"({"changed":1,"speaker":"Ann"})", {}},
                 R"(tuppiRenamed [true,"Renamed in 1 line","Speaker 1","Ann"])"},
        Answered{"RenamedWithoutAReport", rename, {0, "{}", {}},
                 R"(tuppiRenamed [true,"Renamed in 0 lines","Speaker 1","Anna"])"},
        Answered{"RenamedInUntold", rename, {0, R"({"speaker":null})", {}},
                 R"(tuppiRenamed [true,"Renamed in 0 lines","Speaker 1","Anna"])"},
        Answered{"SpeakerSet", speaker, {0, R"({"speaker":"Ann"})", {}},
                 R"(tuppiSpeakerSaved [4,true,"Speaker saved","Ann"])"},
        Answered{"SpeakerCleared", speaker, {0, R"({"speaker":null})", {}},
                 R"(tuppiSpeakerSaved [4,true,"Speaker saved",null])"},
        Answered{"SpeakerUntold", speaker, {0, "{}", {}}, R"(tuppiSpeakerSaved [4,true,"Speaker saved",null])"},
        Answered{"Joined", join, {0, R"({"segment":{"start":1.5,"text":"a b"}})", {}},
                 R"(tuppiJoined [4,true,"Joined with the line above",{"start":1.5,"text":"a b"}])"},
        Answered{"JoinedUntold", join, {0, "{}", {}}, R"(tuppiJoined [4,true,"Joined with the line above",null])"},
        Answered{"SplitInTwo", split, {0, R"({"segments":[{"text":"a"},{"text":"b"},{"text":"c"}]})", {}},
                 R"(tuppiSplit [4,true,"Split",{"text":"a"},{"text":"b"}])"},
        Answered{"SplitHalfTold", split, {0, R"({"segments":[{"text":"a"}]})", {}},
                 R"(tuppiSplit [4,true,"Split",{"text":"a"},null])"},
        Answered{"SplitUntold", split, {0, R"({"segments":"no list"})", {}}, R"(tuppiSplit [4,true,"Split",null,null])"},
        Answered{"SplitIntoNothingTold", split, {0, R"({"segments":[null,{"text":"b"}]})", {}},
                 R"(tuppiSplit [4,true,"Split",null,{"text":"b"}])"},
        Answered{"Edited", edit, {0, R"({"clean_updated":false})", {}}, R"(tuppiSaved [4,true,"Saved","t"])", true},
        Answered{"EditedUntold", edit, {0, "{}", {}}, R"(tuppiSaved [4,true,"Saved","t"])", true},
        Answered{"EditedInBoth", edit, {0, R"({"clean_updated":true})", {}},
                 "tuppiSaved [4,true,\"Saved \xC2\xB7 also fixed in the clean text\",\"t\"]", true}),
    test::caseName);

INSTANTIATE_TEST_SUITE_P(
    Failures, Answering,
    testing::Values(
        Answered{"Rename", rename, {1, {}, "Error: segment out of range\n"},
                 R"(tuppiRenamed [false,"Not saved: segment out of range","Speaker 1","Speaker 1"])"},
        Answered{"Speaker", speaker, {1, {}, {}}, R"(tuppiSpeakerSaved [4,false,"Not saved",null])"},
        Answered{"Join", join, {1, {}, {}}, R"(tuppiJoined [4,false,"Not saved"])"},
        Answered{"Split", split, {1, {}, {}}, R"(tuppiSplit [4,false,"Not saved"])"},
        Answered{"Edit", edit, {1, {}, {}}, R"(tuppiSaved [4,false,"Not saved","t"])"},
        Answered{"RenameWithoutReply", rename, {0, {}, {}},
                 R"(tuppiRenamed [false,"Not saved","Speaker 1","Speaker 1"])"},
        Answered{"SpeakerWithoutReply", speaker, {0, "[]", {}}, R"(tuppiSpeakerSaved [4,false,"Not saved",null])"},
        Answered{"JoinWithoutReply", join, {0, "null", {}}, R"(tuppiJoined [4,false,"Not saved"])"},
        Answered{"SplitWithoutReply", split, {0, "{", {}}, R"(tuppiSplit [4,false,"Not saved"])"},
        Answered{"AFailedOneThatAnswers", edit, {1, "{}", {}}, R"(tuppiSaved [4,false,"Not saved","t"])"},
        Answered{"NoReply", edit, {0, {}, {}}, R"(tuppiSaved [4,false,"Not saved","t"])"},
        Answered{"NoJson", edit, {0, "done", {}}, R"(tuppiSaved [4,false,"Not saved","t"])"},
        Answered{"NoObject", edit, {0, "[1]", {}}, R"(tuppiSaved [4,false,"Not saved","t"])"},
        Answered{"NotUtf8", edit, {0, "{\"speaker\":\"\xFF\"}", {}}, R"(tuppiSaved [4,false,"Not saved","t"])"},
        Answered{"NoEngine", edit, {127, {}, "Error: not installed"},
                 R"(tuppiSaved [4,false,"Not saved: not installed","t"])"}),
    test::caseName);

TEST(NotSaved, LosesItsPrefixesWhereverTheyStand)
{
    EXPECT_EQ(NotSavedText(u"Error: segment out of range\n"_s), u"Not saved: segment out of range"_s);
    EXPECT_EQ(NotSavedText(u" Помилка: Error: two\nError: lines \n"_s), u"Not saved: two\nlines"_s);
    EXPECT_EQ(NotSavedText(u"Error: \n"_s), u"Not saved"_s);
    EXPECT_EQ(NotSavedText({}), u"Not saved"_s);
}

TEST(TheCallId, IsThatOfTheLastEntryOfTheFolder)
{
    const QList<QJsonObject> history{object(R"({"id":"a","call_dir":"/c/1"})"),
                                     object(R"({"id":"b","call_dir":"/c/1"})"),
                                     object(R"({"id":"c","call_dir":null})"),
                                     object(R"({"id":"d","call_dir":"/c/2"})"),
                                     object(R"({"id":null,"call_dir":"/c/2"})"), object(R"({"id":"e"})")};
    EXPECT_EQ(ViewerCallId(history, u"/c/1"_s), u"b"_s);
    EXPECT_EQ(ViewerCallId(history, u"/c/2"_s), u"d"_s);
    EXPECT_EQ(ViewerCallId(history, u"/c"_s), QString());
    EXPECT_EQ(ViewerCallId(history, {}), QString());
}

TEST(TheAnswerScript, CallsThePagesFunction)
{
    EXPECT_EQ(AnswerScript({u"tuppiJoined"_s, {4, false, u"Not \"saved\" %2 \\"_s, QJsonValue::Null}}),
              uR"(window.tuppiJoined.apply(null, [4,false,"Not \"saved\" %2 \\",null]))"_s);
}

} // namespace

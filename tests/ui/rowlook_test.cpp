#include "list/RowLook.h"

#include <gtest/gtest.h>

using namespace tuppi;

namespace {

QString marked(const QString &text)
{
    return text.isEmpty() ? text : u'~' + text;
}

RowLook lookOf(const QJsonObject &row, const QString &detail = u"detail"_qs, double progress = -2)
{
    return RowLookFor(row, u"key"_qs, detail, progress, marked);
}

QJsonObject rowOf(const char *status, QJsonValue paused = QJsonValue::Undefined)
{
    QJsonObject row{{u"id"_qs, u"job"_qs}, {u"title"_qs, u"Talk"_qs}};
    if (*status)
        row.insert(u"status"_qs, QString::fromLatin1(status));
    if (!paused.isUndefined())
        row.insert(u"paused"_qs, paused);
    return row;
}

struct PoseCase
{
    const char *status;
    QJsonValue paused;
    const char *pose;
    bool animated;
    bool active;
};

class PoseTable : public testing::TestWithParam<PoseCase>
{
};

TEST_P(PoseTable, gives)
{
    const RowLook look = lookOf(rowOf(GetParam().status, GetParam().paused));
    EXPECT_EQ(look.pose, QString::fromLatin1(GetParam().pose));
    EXPECT_EQ(look.animated, GetParam().animated);
    EXPECT_EQ(look.activeCard, GetParam().active);
    EXPECT_EQ(look.mascotKey,
              GetParam().animated ? u"job|"_qs + QString::fromLatin1(GetParam().pose) : QString());
}

const QJsonValue absent(QJsonValue::Undefined);

INSTANTIATE_TEST_SUITE_P(RowLook, PoseTable,
                         testing::Values(PoseCase{"ready", absent, "done", false, false},
                                         PoseCase{"failed", absent, "oops", true, false},
                                         PoseCase{"cancelled", absent, "oops", false, false},
                                         PoseCase{"queued", absent, "listening", true, true},
                                         PoseCase{"transcribing", false, "listening", true, true},
                                         PoseCase{"transcribing", QJsonValue::Null, "listening", true, true},
                                         PoseCase{"transcribing", true, "waiting", false, true},
                                         PoseCase{"queued", 1, "waiting", false, true},
                                         PoseCase{"analyzing", absent, "writing", true, true},
                                         PoseCase{"analyzing", true, "waiting", false, true},
                                         PoseCase{"cleaning", absent, "writing", true, true},
                                         PoseCase{"waiting", absent, "waiting", true, false},
                                         PoseCase{"waiting", true, "waiting", true, false},
                                         PoseCase{"starting", absent, "listening", false, false},
                                         PoseCase{"ready", true, "done", false, false},
                                         PoseCase{"something new", absent, "listening", false, false},
                                         PoseCase{"", absent, "listening", false, false}));

struct ButtonCase
{
    const char *status;
    bool paused;
    QStringList buttons; ///< "command style title-or-symbol/tip"
};

class ButtonTable : public testing::TestWithParam<ButtonCase>
{
};

TEST_P(ButtonTable, gives)
{
    QStringList buttons;
    for (const RowButton &button : lookOf(rowOf(GetParam().status, GetParam().paused)).buttons) {
        const QString shown = button.symbol.isEmpty() ? button.title : button.symbol + u'/' + button.tip;
        buttons.append(button.action + u' ' + QString::number(button.style) + u' ' + shown);
    }
    EXPECT_EQ(buttons, GetParam().buttons);
}

const QString trash = u"removeRow 1 trash/~Remove…"_qs;

INSTANTIATE_TEST_SUITE_P(
    RowLook, ButtonTable,
    testing::Values(ButtonCase{"ready",
                               false,
                               {u"openRowViewer 0 ~Open"_qs, u"openRowText 1 ~Summary"_qs,
                                u"copyRowText 1 ~Copy Text"_qs,
                                u"showRowInFinder 1 folder/~Show in Finder"_qs, trash}},
                    ButtonCase{"failed", false, {u"retryRow 1 ~Try Again"_qs, trash}},
                    ButtonCase{"cancelled", false, {u"retryRow 1 ~Start Again"_qs, trash}},
                    ButtonCase{"transcribing", false, {u"pauseRow 1 ~Pause"_qs, u"cancelRow 2 ~Cancel"_qs}},
                    ButtonCase{"cleaning", true, {u"resumeRow 1 ~Resume"_qs, u"cancelRow 2 ~Cancel"_qs}},
                    ButtonCase{"queued", false, {u"pauseRow 1 ~Pause"_qs, u"cancelRow 2 ~Cancel"_qs}},
                    ButtonCase{"waiting", false, {u"removeWaiting 1 ~Remove"_qs}},
                    ButtonCase{"starting", false, {}}, ButtonCase{"unheard of", false, {}},
                    ButtonCase{"", false, {}}));

TEST(RowLook, buttonsAreNamedByTipOrTitleAndTheRow)
{
    const QList<RowButton> buttons = lookOf(rowOf("ready")).buttons;
    EXPECT_EQ(buttons.at(0).accessibleName, u"~Open — Talk"_qs);
    EXPECT_EQ(buttons.at(3).accessibleName, u"~Show in Finder — Talk"_qs);
    EXPECT_EQ(buttons.at(4).accessibleName, u"~Remove… — Talk"_qs);
}

TEST(RowLook, aTitleIsNeverTakenForAFormat)
{
    QJsonObject row = rowOf("waiting");
    row.insert(u"title"_qs, u"%1 and %@"_qs);
    EXPECT_EQ(lookOf(row).buttons.at(0).accessibleName, u"~Remove — %1 and %@"_qs);
    EXPECT_EQ(lookOf(row, u"%2"_qs).accessibleName, u"%1 and %@. %2"_qs);
}

TEST(RowLook, anUntitledRowShowsRecordingButIsNotNamedSo)
{
    for (const QJsonValue &title : {absent, QJsonValue(QJsonValue::Null)}) {
        QJsonObject row{{u"status"_qs, u"ready"_qs}};
        if (!title.isUndefined())
            row.insert(u"title"_qs, title);
        const RowLook look = lookOf(row);
        EXPECT_EQ(look.title, u"~Recording"_qs);
        EXPECT_EQ(look.accessibleName, u". detail"_qs);
        EXPECT_EQ(look.buttons.at(0).accessibleName, u"~Open — "_qs);
    }
    QJsonObject empty{{u"title"_qs, QString()}};
    EXPECT_EQ(lookOf(empty).title, QString()) << "an empty title is a title";
}

TEST(RowLook, aStartingRowListensWithABarAndNoButtons)
{
    const RowLook look = lookOf(rowOf("starting"), u"Copying the file…"_qs, -1);
    EXPECT_TRUE(look.hasBar());
    EXPECT_EQ(look.progress, -1);
    EXPECT_EQ(look.detail, u"Copying the file…"_qs);
    EXPECT_FALSE(look.animated);
    EXPECT_TRUE(look.buttons.isEmpty());
}

TEST(RowLook, aBarBelongsToEveryProgressAboveMinusTwo)
{
    EXPECT_FALSE(lookOf(rowOf("ready"), {}, -2).hasBar());
    EXPECT_TRUE(lookOf(rowOf("ready"), {}, -1).hasBar());
    EXPECT_TRUE(lookOf(rowOf("ready"), {}, 0).hasBar());
    EXPECT_TRUE(lookOf(rowOf("ready"), {}, 1.2).hasBar());
}

TEST(RowLook, toneFollowsTheStatus)
{
    EXPECT_EQ(lookOf(rowOf("failed")).tone, DetailTone::Attention);
    EXPECT_EQ(lookOf(rowOf("ready")).tone, DetailTone::Good);
    for (const char *status : {"cancelled", "waiting", "transcribing", "starting", "other", ""})
        EXPECT_EQ(lookOf(rowOf(status)).tone, DetailTone::Slate) << status;
}

TEST(RowLook, onlyARussianRowHasADetailTip)
{
    QJsonObject row = rowOf("ready");
    EXPECT_EQ(lookOf(row).detailTip, QString());
    row.insert(u"language"_qs, u"uk"_qs);
    EXPECT_EQ(lookOf(row).detailTip, QString());
    row.insert(u"language"_qs, u"ru"_qs);
    EXPECT_EQ(lookOf(row).detailTip,
              u"~Warning! This language is dangerous and can cause war! Use it on your own risk"_qs);
}

TEST(RowLook, waitingFilesOfOneTitleKeepMascotsApart)
{
    const auto waiting = [](int index) {
        return QJsonObject{
            {u"status"_qs, u"waiting"_qs}, {u"waitIndex"_qs, index}, {u"title"_qs, u"Talk"_qs}};
    };
    EXPECT_EQ(lookOf(waiting(0)).mascotKey, u"local-0-Talk|waiting"_qs);
    EXPECT_EQ(lookOf(waiting(12)).mascotKey, u"local-12-Talk|waiting"_qs);
    EXPECT_EQ(MascotKey({}, u"waiting"_qs), u"local--|waiting"_qs);
    EXPECT_EQ(MascotKey({{u"id"_qs, QJsonValue::Null}}, u"oops"_qs), u"local--|oops"_qs);
}

} // namespace

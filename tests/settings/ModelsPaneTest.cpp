// The Models pane: the lists, and every command with its good and its bad end.

#include "settings/SettingsTest.h"

#include "settings/ModelsPane.h"
#include "ui/ModelCard.h"

#include <QScreen>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace tuppi;
using test::Answer;
using test::click;
using test::focusName;
using test::press;
using test::tabTo;
using test::type;
using test::waitFor;

namespace {

constexpr auto twoModels = R"({"custom":[{"id":"a","name":"Ada","kind":"parakeet","repo":"ada/p"},
                                         {"id":"b","name":"Ben","kind":"whisper","repo":"ben/w"}],
                               "text_model":"qwen3:8b","ollama_models":["gemma","llama"]})";

class ModelsPaneTest : public test::SettingsTest
{
protected:
    void openModels(const QByteArray &reply = twoModels)
    {
        m_engine.answer(u"models"_s, {reply});
        openTab(test::Models);
        settle();
        // The window asked at the start, the pane when it was opened.
        ASSERT_TRUE(waitFor([this] { return calls(u"--json"_s).size() == 2; }));
    }
    QStringList lines() const
    {
        QStringList lines;
        for (const QWidget *line : settingsWindow()->findChildren<QWidget *>(u"customModel"_s)) {
            if (!line->isVisible())
                continue;
            QStringList texts;
            for (const ElidedLabel *label : line->findChildren<ElidedLabel *>())
                texts.append(label->text());
            lines.append(texts.join(u'|'));
        }
        return lines;
    }
    QString status() const { return text(u"modelsStatus"_s); }
    QPushButton *button(const QString &name) const { return part<QPushButton>(name); }
    TextField *pullField() const { return part<TextField>(u"pullField"_s); }
    QList<QStringList> calls(const QString &verb) const
    {
        QList<QStringList> chosen = m_engine.calls(u"models"_s);
        chosen.removeIf([&](const QStringList &call) { return call.value(1) != verb; });
        return chosen;
    }
    /// The next call of "models" answers so, and every one after it with the list again.
    void answerTo(const QString &command, const Answer &answer) { m_engine.answerTo(u"models"_s, command, answer); }
    void openAddSheet()
    {
        click(button(u"addCustomModel"_s));
        ASSERT_TRUE(settingsSheetOpens());
    }
};

TEST_F(ModelsPaneTest, ShowsWhatTheEngineHas)
{
    openModels();
    EXPECT_EQ(lines(), (QStringList{u"Ada|ada/p · Parakeet"_s, u"Ben|ben/w · Whisper"_s}));
    EXPECT_EQ(itemsOf(u"textModel"_s), (QStringList{u"gemma"_s, u"llama"_s, u"qwen3:8b"_s}));
    EXPECT_EQ(menu(u"textModel"_s)->currentText(), u"qwen3:8b"_s);
    EXPECT_EQ(itemsOf(u"engine"_s).mid(3), (QStringList{u"Whisper Large v3 — most careful"_s, u"-"_s, u"Ada (custom)"_s,
                                                        u"Ben (custom)"_s}));
    EXPECT_EQ(settingsWindow()->findChildren<ElidedLabel *>(u"builtInModel"_s).size(), 4);
}

TEST_F(ModelsPaneTest, NothingAtAll)
{
    openModels(R"({"custom":null,"text_model":null})");
    EXPECT_EQ(lines(), QStringList());
    EXPECT_EQ(menu(u"textModel"_s)->count(), 0);
    EXPECT_EQ(menu(u"textModel"_s)->currentIndex(), -1);
    EXPECT_EQ(status(), QString());
}

TEST_F(ModelsPaneTest, AGarbledReplyLeavesTheListsAlone)
{
    openModels();
    for (const QByteArray reply : {"", "[]", "null", "\xff", "{"}) {
        m_engine.answer(u"models"_s, {reply});
        m_app->refreshCustomModels();
        settle();
        EXPECT_EQ(lines().size(), 2);
        EXPECT_EQ(menu(u"textModel"_s)->count(), 3);
    }
}

TEST_F(ModelsPaneTest, GarbledModelsAreLeftOut)
{
    openModels(R"({"custom":[null,"x",{"id":null},{"id":"a","name":7,"repo":[]}],"text_model":{},"ollama_models":[null,3,"x"]})");
    EXPECT_EQ(lines(), QStringList{u"| · Whisper"_s});
    EXPECT_EQ(itemsOf(u"textModel"_s), QStringList{u"x"_s});
}

TEST_F(ModelsPaneTest, AChosenModelThatIsGoneBecomesAutomatic)
{
    openModels();
    settingsWindow()->showTab(test::Transcription);
    choose(u"engine"_s, u"custom:b"_s);
    EXPECT_EQ(m_defaults->text(u"engine"_s), u"custom:b"_s);
    m_engine.answer(u"models"_s, {R"({"custom":[]})"});
    m_app->refreshCustomModels();
    EXPECT_TRUE(waitFor([this] { return m_defaults->text(u"engine"_s) == u"auto"_s; }));
    EXPECT_EQ(menu(u"engine"_s)->currentText(), u"Automatic (recommended)"_s);
}

TEST_F(ModelsPaneTest, AddsAModelByKeyboardAlone)
{
    openModels();
    openAddSheet();
    EXPECT_EQ(sheetSays(), u"Add a speech model|Tuppi downloads it now. It must be in Apple's MLX format (look for models "
                            "from mlx-community).|Download and Add|Cancel"_s);
    EXPECT_EQ(focusName(), u"modelName"_s);
    type(u" Cleo "_s);
    ASSERT_TRUE(tabTo(u"modelRepo"_s));
    type(u"cleo/m"_s);
    answerTo(u"add"_s, Answer{}.heldAt("download"));
    press(Qt::Key_Return);
    EXPECT_TRUE(waitFor([this] { return calls(u"add"_s).size() == 1; }));
    EXPECT_EQ(calls(u"add"_s).first(), (QStringList{u"models"_s, u"add"_s, u"--name= Cleo "_s, u"--kind=whisper"_s,
                                                    u"--repo=cleo/m"_s, u"--json"_s}));
    EXPECT_EQ(status(), u"Downloading cleo/m… large models can take several minutes."_s);
    const int asked = int(calls(u"--json"_s).size());
    m_engine.openGate("download");
    EXPECT_TRUE(says(u"modelsStatus"_s, u"Added  Cleo . It's now in the Model menu."_s));
    EXPECT_TRUE(waitFor([&] { return calls(u"--json"_s).size() == asked + 1; }));
}

TEST_F(ModelsPaneTest, AFailedAddIsReportedAndNothingIsAskedAgain)
{
    openModels();
    openAddSheet();
    settingsSheet()->findChild<PopUpButton *>(u"modelKind"_s)->setCurrentIndex(1);
    answerTo(u"add"_s, Answer::failure(1, "Error: no such model\n"));
    const int asked = int(calls(u"--json"_s).size());
    settingsSheet()->answer(0);
    ASSERT_TRUE(waitFor([this] { return settingsSheet() && settingsSheet()->text().message == u"Could not add this model"_s; }));
    EXPECT_EQ(sheetSays(), u"Could not add this model|no such model|OK"_s);
    EXPECT_EQ(calls(u"add"_s).first(), (QStringList{u"models"_s, u"add"_s, u"--name="_s, u"--kind=parakeet"_s, u"--repo="_s,
                                                    u"--json"_s}));
    EXPECT_EQ(status(), QString());
    press(Qt::Key_Escape);
    settle();
    EXPECT_EQ(calls(u"--json"_s).size(), asked);
}

TEST_F(ModelsPaneTest, CancelAddsNothing)
{
    openModels();
    openAddSheet();
    press(Qt::Key_Escape);
    ASSERT_TRUE(settingsSheetCloses());
    settle();
    EXPECT_TRUE(calls(u"add"_s).isEmpty());
    EXPECT_TRUE(settingsWindow()->isVisible());
}

TEST_F(ModelsPaneTest, RemovesTheModelOfItsLine)
{
    openModels();
    click(button(u"removeModel.1"_s));
    ASSERT_TRUE(settingsSheetOpens());
    EXPECT_EQ(sheetSays(), u"Remove “Ben” from Tuppi?|It disappears from the Model menu. Transcripts made with it stay as "
                            "they are.|Remove|Cancel"_s);
    // Another list in the meantime changes nothing: the record was taken when the question was asked.
    m_engine.answer(u"models"_s, {R"({"custom":[{"id":"z","name":"Zoe"}]})"});
    m_app->refreshCustomModels();
    settle();
    settingsSheet()->answer(0);
    EXPECT_TRUE(says(u"modelsStatus"_s, u"Removed Ben."_s));
    EXPECT_EQ(calls(u"remove"_s), (QList<QStringList>{{u"models"_s, u"remove"_s, u"--id=b"_s, u"--json"_s}}));
    EXPECT_TRUE(waitFor([this] { return lines() == QStringList{u"Zoe| · Whisper"_s}; }));
}

TEST_F(ModelsPaneTest, RemovingIsNeverTheDefault)
{
    openModels();
    click(button(u"removeModel.0"_s));
    ASSERT_TRUE(settingsSheetOpens());
    press(Qt::Key_Return);
    ASSERT_TRUE(settingsSheetCloses());
    settle();
    EXPECT_TRUE(calls(u"remove"_s).isEmpty());
}

TEST_F(ModelsPaneTest, TheSameListAgainLeavesItsButtonsAlone)
{
    openModels();
    const QPointer<QWidget> remove = button(u"removeModel.1"_s);
    remove->setFocus();
    m_app->refreshCustomModels();
    settle();
    settle();
    ASSERT_TRUE(remove);
    EXPECT_TRUE(remove->isVisible());
    EXPECT_TRUE(remove->hasFocus());
}

TEST_F(ModelsPaneTest, TheSameListAgainLeavesMenusAndCardsAlone)
{
    openModels();
    m_app->addFiles({QUrl::fromLocalFile(m_engine.recording(u"a.m4a"_s))});
    const QPointer<ModelCard> card = panel()->findChild<ModelCard *>();
    ASSERT_TRUE(card);
    const QSignalSpy speech(menu(u"engine"_s)->model(), &QAbstractItemModel::rowsRemoved);
    const QSignalSpy text(menu(u"textModel"_s)->model(), &QAbstractItemModel::rowsRemoved);
    menu(u"textModel"_s)->setCurrentIndex(0);
    m_app->refreshCustomModels();
    EXPECT_TRUE(waitFor([&] { return menu(u"textModel"_s)->currentText() == u"qwen3:8b"_s; }))
        << "a choice that did not hold is taken back";
    EXPECT_TRUE(card);
    EXPECT_TRUE(speech.isEmpty());
    EXPECT_TRUE(text.isEmpty());
}

TEST_F(ModelsPaneTest, AFailedRemovalIsReported)
{
    openModels();
    click(button(u"removeModel.0"_s));
    ASSERT_TRUE(settingsSheetOpens());
    answerTo(u"remove"_s, Answer::failure(3, "Помилка: it is in use\n"));
    settingsSheet()->answer(0);
    ASSERT_TRUE(waitFor([this] { return settingsSheet() && settingsSheet()->text().buttons.size() == 1; }));
    EXPECT_EQ(settingsSheet()->text().message, u"Could not remove this model"_s);
    EXPECT_EQ(settingsSheet()->text().detail, u"it is in use"_s);
    EXPECT_EQ(lines().size(), 2);
}

TEST_F(ModelsPaneTest, AnIndexOutsideTheListDoesNothing)
{
    openModels();
    for (const int index : {-1, 2, 99})
        m_app->removeCustomModel(index);
    EXPECT_EQ(settingsSheet(), nullptr);
}

TEST_F(ModelsPaneTest, UsesATextModel)
{
    openModels();
    answerTo(u"text-model"_s, Answer{}.heldAt("set up"));
    choose(u"textModel"_s, u"llama"_s);
    EXPECT_EQ(status(), u"Setting up llama… if it needs downloading, this can take a while."_s);
    m_engine.openGate("set up");
    EXPECT_TRUE(says(u"modelsStatus"_s, u"Summaries now use llama."_s));
    EXPECT_EQ(calls(u"text-model"_s), (QList<QStringList>{{u"models"_s, u"text-model"_s, u"--name=llama"_s, u"--json"_s}}));
}

TEST_F(ModelsPaneTest, TheModelInUseCanBeChosenAgain)
{
    openModels();
    ASSERT_EQ(menu(u"textModel"_s)->currentText(), u"qwen3:8b"_s);
    choose(u"textModel"_s, u"qwen3:8b"_s);
    EXPECT_TRUE(says(u"modelsStatus"_s, u"Summaries now use qwen3:8b."_s)) << "Ollama may not have it any more";
    EXPECT_EQ(calls(u"text-model"_s), (QList<QStringList>{{u"models"_s, u"text-model"_s, u"--name=qwen3:8b"_s, u"--json"_s}}));
}

TEST_F(ModelsPaneTest, AfterAFailureTheMenuShowsTheEnginesChoiceAgain)
{
    openModels();
    answerTo(u"text-model"_s, Answer::failure(1, "Error: Ollama is not running\n"));
    choose(u"textModel"_s, u"llama"_s);
    ASSERT_TRUE(settingsSheetOpens());
    EXPECT_EQ(sheetSays(), u"Could not use this text model|Ollama is not running|OK"_s);
    EXPECT_TRUE(waitFor([this] { return menu(u"textModel"_s)->currentText() == u"qwen3:8b"_s; }));
    EXPECT_EQ(calls(u"text-model"_s).size(), 1) << "showing it again is no choice";
}

TEST_F(ModelsPaneTest, DownloadsWhatIsTypedWithoutItsBlanks)
{
    openModels();
    pullField()->setFocus();
    type(u"  mistral "_s);
    answerTo(u"text-model"_s, Answer{});
    press(Qt::Key_Return);
    EXPECT_TRUE(says(u"modelsStatus"_s, u"Summaries now use mistral."_s));
    EXPECT_EQ(calls(u"text-model"_s).first().at(2), u"--name=mistral"_s);
    EXPECT_EQ(pullField()->text(), QString());
}

TEST_F(ModelsPaneTest, AFailedDownloadKeepsWhatWasTyped)
{
    openModels();
    pullField()->setText(u"mistral"_s);
    answerTo(u"text-model"_s, Answer::failure(1, ""));
    click(button(u"pullTextModel"_s));
    ASSERT_TRUE(settingsSheetOpens());
    EXPECT_EQ(sheetSays(), u"Could not use this text model||OK"_s);
    EXPECT_EQ(pullField()->text(), u"mistral"_s);
}

TEST_F(ModelsPaneTest, OnlyBlanksRunNothing)
{
    openModels();
    pullField()->setText(u" \t "_s);
    click(button(u"pullTextModel"_s));
    settle();
    EXPECT_TRUE(calls(u"text-model"_s).isEmpty());
    EXPECT_EQ(status(), QString());
}

TEST_F(ModelsPaneTest, ALongListScrollsWithinTheScreen)
{
    QByteArray reply = R"({"custom":[)";
    for (int model = 0; model < 200; ++model)
        reply += (model ? ",{\"id\":" : "{\"id\":") + QByteArray::number(model) + R"(,"name":"Model","repo":")" + QByteArray(300, 'r') + "\"}";
    openModels(reply + "]}");
    EXPECT_EQ(lines().size(), 200);
    EXPECT_LE(settingsWindow()->height(), settingsWindow()->screen()->availableGeometry().height());
    EXPECT_EQ(settingsWindow()->width(), 560) << "a repository gives way";
}

} // namespace

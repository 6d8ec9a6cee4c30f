#include "app/AppDelegate.h"

#include "engine/EngineCommands.h"
#include "engine/EngineErrors.h"
#include "intake/SetupPanel.h"
#include "settings/AddModelForm.h"
#include "settings/Fill.h"
#include "settings/L.h"
#include "settings/Models.h"
#include "settings/ModelsPane.h"
#include "settings/SettingsWindow.h"
#include "ui/Sheet.h"

#include <QApplication>

namespace tuppi {

using namespace Qt::StringLiterals;

void AppDelegate::refreshCustomModels()
{
    RunCallRead(
        command::models(), this, {}, [](const RawReply &raw) { return ReadModelList(raw.out); },
        [this](const std::optional<ModelList> &list) {
            if (!list)
                return;
            const bool named = m_models.custom != list->custom;
            m_models = {list->custom, list->textModel, list->ollamaModels, true};
            resetEngineThatIsGone();
            rebuildModelsUI();
            refresh();
            if (named)
                Q_EMIT rowsChanged(); // the rows name the models
        });
}

/// A stored model that a fresh list no longer has gives way to the automatic choice.
void AppDelegate::resetEngineThatIsGone()
{
    const QString stored = m_queue.defaults.text(u"engine"_s);
    const QString kept = EngineAfterRefresh(stored, allModels(m_models.custom));
    if (kept != stored)
        m_queue.defaults.set({{u"engine"_s, kept}});
}

void AppDelegate::connectModelsPane()
{
    const ModelsPane *pane = m_settings.window->models();
    connect(pane, &ModelsPane::addRequested, this, &AppDelegate::addCustomModel);
    connect(pane, &ModelsPane::removeRequested, this, &AppDelegate::removeCustomModel);
    connect(pane, &ModelsPane::textModelChosen, this, &AppDelegate::useTextModel);
    connect(pane, &ModelsPane::pullRequested, this, &AppDelegate::pullTextModel);
}

void AppDelegate::rebuildModelsUI()
{
    if (m_setup.panel)
        m_setup.panel->setModels(allModels(m_models.custom));
    if (!m_settings.window)
        return;
    m_settings.window->setModelChoices(ModelChoices(allModels(m_models.custom)), m_queue.defaults.text(u"engine"_s));
    ModelsPane *pane = m_settings.window->models();
    pane->setModels(LinesOfModels(m_models.custom));
    pane->setTextModels(TextModelChoices(m_models.ollamaModels, m_models.textModel), m_models.textModel);
}

void AppDelegate::modelsBusy(const QString &text)
{
    m_settings.window->models()->setStatus(text);
}

void AppDelegate::modelsError(const QString &title, const QString &err)
{
    modelsBusy({});
    SheetText text;
    text.message = title;
    text.detail = ModelFailureDetail(err);
    Sheet::open(settingsSheetWindow(), text);
}

void AppDelegate::addCustomModel()
{
    constexpr int add = 0;
    SheetText text;
    text.message = L(u"Add a speech model"_s);
    text.detail = L(u"Tuppi downloads it now. It must be in Apple's MLX format (look for models from mlx-community)."_s);
    text.buttons = {L(u"Download and Add"_s), L(u"Cancel"_s)};
    text.escapeButton = 1;
    auto *form = new AddModelForm;
    Sheet *sheet = Sheet::open(m_settings.window.get(), text, [this, form](int button) {
        if (button == add)
            downloadModel(form->name(), form->kind(), form->repo());
    });
    sheet->setAccessory(form);
}

void AppDelegate::downloadModel(const QString &name, const QString &kind, const QString &repo)
{
    modelsBusy(Fill(L(u"Downloading %@… large models can take several minutes."_s), {repo}));
    RunCallTimeout(command::addModel(name, kind, repo), this, [this, name](const EngineReply &reply) {
        if (reply.status != 0) {
            modelsError(L(u"Could not add this model"_s), reply.err);
            return;
        }
        modelsBusy(Fill(L(u"Added %@. It's now in the Model menu."_s), {name}));
        refreshCustomModels();
    }, 0);
}

void AppDelegate::removeCustomModel(int index)
{
    if (index < 0 || index >= m_models.custom.size())
        return;
    constexpr int remove = 0;
    const QJsonObject record = m_models.custom.at(index).toObject();
    SheetText text;
    text.message = Fill(L(u"Remove “%@” from Tuppi?"_s), {record.value("name"_L1).toString()});
    text.detail = L(u"It disappears from the Model menu. Transcripts made with it stay as they are."_s);
    text.buttons = {L(u"Remove"_s), L(u"Cancel"_s)};
    text.defaultButton = 1;
    text.destructiveButton = remove;
    Sheet::open(m_settings.window.get(), text, [this, record](int button) {
        if (button == remove)
            forgetModel(record);
    });
}

void AppDelegate::forgetModel(const QJsonObject &record)
{
    const QString id = record.value("id"_L1).toVariant().toString();
    RunCallTimeout(command::removeModel(id), this,
                   [this, name = record.value("name"_L1).toString()](const EngineReply &reply) {
        if (reply.status != 0) {
            modelsError(L(u"Could not remove this model"_s), reply.err);
            return;
        }
        modelsBusy(Fill(L(u"Removed %@."_s), {name}));
        refreshCustomModels();
    }, 0);
}

void AppDelegate::useTextModel(const QString &name)
{
    if (name.isEmpty()) {
        QApplication::beep();
        return;
    }
    modelsBusy(Fill(L(u"Setting up %@… if it needs downloading, this can take a while."_s), {name}));
    RunCallTimeout(command::useTextModel(name), this, [this, name](const EngineReply &reply) {
        if (reply.status != 0) {
            modelsError(L(u"Could not use this text model"_s), reply.err);
        } else {
            modelsBusy(Fill(L(u"Summaries now use %@."_s), {name}));
            m_settings.window->models()->clearPullField();
        }
        refreshCustomModels();
    }, 0);
}

void AppDelegate::pullTextModel(const QString &typed)
{
    useTextModel(TypedModelName(typed));
}

} // namespace tuppi

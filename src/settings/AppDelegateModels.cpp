#include "app/AppDelegate.h"

#include "engine/EngineCommands.h"
#include "settings/Models.h"

namespace tuppi {

using namespace Qt::StringLiterals;

void AppDelegate::refreshCustomModels()
{
    RunCallRead(
        command::models(), this, {}, [](const RawReply &raw) { return ReadModelList(raw.out); },
        [this](const std::optional<ModelList> &list) {
            if (!list)
                return;
            m_models = {list->custom, list->textModel, list->ollamaModels};
            resetEngineThatIsGone();
            refresh();
        });
}

/// A stored model that a fresh list no longer has gives way to the automatic choice.
void AppDelegate::resetEngineThatIsGone()
{
    const QString stored = m_queue.defaults.text(u"engine"_s);
    const QString kept = EngineAfterRefresh(stored, allModels(m_models.custom));
    if (kept != stored)
        m_queue.defaults.setValue(u"engine"_s, kept);
}

} // namespace tuppi

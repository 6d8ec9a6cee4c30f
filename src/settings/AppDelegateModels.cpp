#include "app/AppDelegate.h"

#include "engine/EngineCommands.h"

namespace tuppi {

void AppDelegate::refreshCustomModels()
{
    RunCallRead(
        command::models(), this, {}, [](const RawReply &raw) { return ReadModelList(raw.out); },
        [this](const std::optional<ModelList> &list) {
            if (!list)
                return;
            m_models = {list->custom, list->textModel, list->ollamaModels};
            refresh();
        });
}

} // namespace tuppi

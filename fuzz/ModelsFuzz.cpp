#include "Fuzz.h"

#include "engine/EngineReplies.h"
#include "settings/Models.h"

using namespace Qt::StringLiterals;
using namespace tuppi;

/// A reply of the model list, up to the models on offer.
void readInput(const QByteArray &bytes)
{
    const std::optional<ModelList> list = ReadModelList(bytes);
    if (!list)
        return;
    const QList<ModelRow> models = allModels(list->custom);
    require(models.size() >= Models().size());
    require(HasModel(models, EngineAfterRefresh(u"custom:"_s + list->textModel, models)));
}

#include "settings/Models.h"

#include "settings/Fill.h"
#include "settings/L.h"
#include "settings/Val.h"

#include <QJsonObject>

#include <algorithm>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

ModelRow customRow(const QJsonObject &record)
{
    const bool parakeet = record.value("kind"_L1).toString() == "parakeet"_L1;
    const QString kind = parakeet ? L(u"Parakeet-compatible"_s) : L(u"Whisper-compatible"_s);
    return {Fill(L(u"%@ (custom)"_s), {record.value("name"_L1).toString()}),
            u"custom:"_s + record.value("id"_L1).toVariant().toString(),
            L(u"your model"_s),
            Fill(L(u"Your own %@ model from Hugging Face:\n%@"_s), {kind, record.value("repo"_L1).toString()})};
}

} // namespace

QList<ModelRow> Models()
{
    return {
        {L(u"Automatic (recommended)"_s), u"auto"_s, L(u"UK · EN · auto"_s),
         L(u"Detects each file's language by itself.\nUses Parakeet for Ukrainian and English, Whisper for other "
           "languages. Fast and reliable."_s)},
        {L(u"Parakeet v3 — fastest"_s), u"parakeet"_s, L(u"UK · EN + 23 European"_s),
         L(u"Languages: 25 European, including Ukrainian, English, Polish, German, French, Spanish, Italian, "
           "Portuguese, Dutch, Czech, Slovak, Slovenian, Croatian, Bulgarian, Romanian, Hungarian, Greek, Swedish, "
           "Danish, Finnish, Estonian, Latvian, Lithuanian, Maltese.\nFastest; never invents text during silence."_s)},
        // A name, the same in every language.
        {u"Whisper Large v3 Turbo"_s, u"whisper"_s, L(u"~99 languages"_s),
         L(u"Languages: about 99, including Ukrainian, English, Polish, German, Hebrew, Arabic, Chinese, "
           "Japanese.\nFast version of Whisper. Good spelling and punctuation."_s)},
        {L(u"Whisper Large v3 — most careful"_s), u"whisper-large"_s, L(u"~99 languages"_s),
         L(u"Languages: about 99, including Ukrainian, English, Polish, German, Hebrew, Arabic, Chinese, "
           "Japanese.\nThe full Whisper model. Often the most accurate, but several times slower."_s)},
    };
}

QList<ModelRow> allModels(const QJsonArray &customModels)
{
    QList<ModelRow> rows = Models();
    for (const QJsonValue &record : customModels) {
        if (!Val(record["id"_L1]).isUndefined())
            rows.append(customRow(record.toObject()));
    }
    return rows;
}

QList<ModelRow> ModelsBeforeAnswer(const QString &stored)
{
    QList<ModelRow> rows = Models();
    if (stored.startsWith("custom:"_L1))
        rows.append({L(u"custom model"_s), stored, L(u"your model"_s), QString()});
    return rows;
}

bool HasModel(const QList<ModelRow> &models, const QString &id)
{
    return std::any_of(models.cbegin(), models.cend(), [&](const ModelRow &row) { return row.id == id; });
}

QString EngineAfterRefresh(const QString &stored, const QList<ModelRow> &models)
{
    return HasModel(models, stored) ? stored : u"auto"_s;
}

} // namespace tuppi

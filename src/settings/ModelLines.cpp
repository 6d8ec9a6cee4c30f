#include "settings/ModelLines.h"

#include "settings/Fill.h"
#include "settings/L.h"
#include "settings/Models.h"
#include "settings/Val.h"

#include <QJsonObject>

namespace tuppi {

using namespace Qt::StringLiterals;

ModelLines LinesOfModels(const QJsonArray &customModels)
{
    ModelLines lines;
    for (const ModelRow &model : Models())
        lines.builtIn.append(Fill(L(u"%@  ·  built in"_s), {model.title}));
    for (int index = 0; index < customModels.size(); ++index) {
        const QJsonObject record = customModels.at(index).toObject();
        if (Val(record.value("id"_L1)).isUndefined())
            continue;
        const bool parakeet = record.value("kind"_L1).toString() == "parakeet"_L1;
        lines.custom.append({record.value("name"_L1).toString(),
                             Fill(L(u"%@ · %@"_s),
                                  {record.value("repo"_L1).toString(), parakeet ? u"Parakeet"_s : u"Whisper"_s}),
                             index});
    }
    return lines;
}

QStringList TextModelChoices(const QStringList &ollamaModels, const QString &textModel)
{
    QStringList names = ollamaModels;
    names.removeAll(QString());
    if (!textModel.isEmpty() && !names.contains(textModel))
        names.append(textModel);
    return names;
}

QString TypedModelName(const QString &typed)
{
    const auto isBlank = [](QChar c) { return c == u'\t' || c.category() == QChar::Separator_Space; };
    qsizetype first = 0, end = typed.size();
    while (first < end && isBlank(typed.at(first)))
        ++first;
    while (end > first && isBlank(typed.at(end - 1)))
        --end;
    return typed.sliced(first, end - first);
}

} // namespace tuppi

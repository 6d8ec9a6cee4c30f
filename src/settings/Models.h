#pragma once

#include <QJsonArray>
#include <QList>
#include <QString>

namespace tuppi {

/// One speech model as the menus and cards offer it.
struct ModelRow
{
    QString title;
    QString id;           ///< what is stored under "engine" and handed to the engine
    QString badge;        ///< short note on its languages
    QString description;  ///< may hold a line break; its last line can stand alone

    bool operator==(const ModelRow &) const = default;
};

/// The built-in models, in the interface language.
QList<ModelRow> Models();

/// The built-in models, then the user's own in the engine's order. What is no record with an id is left out.
QList<ModelRow> allModels(const QJsonArray &customModels);

/// The built-in models, before the engine has told the user's own; with the stored one, whose name is not known yet,
/// where that is among these.
QList<ModelRow> ModelsBeforeAnswer(const QString &stored);

bool HasModel(const QList<ModelRow> &models, const QString &id);

/// What the stored model becomes when a fresh list of models has arrived: itself while it is offered, else
/// "auto".
QString EngineAfterRefresh(const QString &stored, const QList<ModelRow> &models);

} // namespace tuppi

#pragma once

#include <QJsonArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace tuppi {

/// One of the user's own speech models as the Models pane lists it.
struct CustomModelLine
{
    QString name;
    QString detail;  ///< repository and kind
    int index = 0;   ///< in the engine's list

    bool operator==(const CustomModelLine &) const = default;
};

/// The lines of the Models pane.
struct ModelLines
{
    QStringList builtIn;
    QList<CustomModelLine> custom;

    bool operator==(const ModelLines &) const = default;
};

ModelLines LinesOfModels(const QJsonArray &customModels);

/// The text models to choose from: those that are there, and the one in use, last, when it is not among them.
QStringList TextModelChoices(const QStringList &ollamaModels, const QString &textModel);

/// What was typed as a model's name, without blanks around it.
QString TypedModelName(const QString &typed);

} // namespace tuppi

#pragma once

#include <QJsonArray>
#include <QString>
#include <QStringList>

namespace tuppi {

/// The engine's models beside the built-in ones, as last reported.
struct ModelsState
{
    QJsonArray custom;
    QString textModel;
    QStringList ollamaModels;
    bool known = false;  ///< the engine has told them
};

} // namespace tuppi

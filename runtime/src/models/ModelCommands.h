#pragma once

#include "core/Arguments.h"

#include <QByteArray>

namespace engine {

// `models` with an action or without; what goes to standard output. Throws Failure.
QByteArray runModels(const Arguments &arguments);

// For the health check: {"ollama": what is wrong or "", "models": [names]}.
QByteArray checkOllama();

// For the worker: what the text model answers to {"model", "system", "text", "json"}. Throws Failure.
QByteArray askTextModel(const QByteArray &question);

} // namespace engine

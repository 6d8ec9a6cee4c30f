#pragma once

#include <QFunctionPointer>

class QString;

namespace tuppi {

/// A function out of a module of the application, which is loaded with it and stays: what brings many
/// libraries is loaded when it is first needed, not at the start. Null where the module is missing.
QFunctionPointer ResolveInModule(const QString &module, const char *function);

} // namespace tuppi

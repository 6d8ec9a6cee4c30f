#pragma once

#include <QtGlobal>

QT_BEGIN_NAMESPACE
class QString;
QT_END_NAMESPACE

namespace tuppi {

/// Has `program` started anew in about a second, once this process is gone (at the latest ten seconds later), so
/// that the new one does not find this one and hand over to it. The caller is about to end. Returns at
/// once; when no shell can be started nothing happens.
void RelaunchAfterQuit(const QString &program);

} // namespace tuppi

#pragma once

#include "app/WaitingQueue.h"
#include "intake/Languages.h"

#include <QVariantMap>

namespace tuppi {

/// The language that a new panel has chosen, out of the stored one: never Russian, and "auto" for a code that
/// is not offered.
QString PreselectedLanguage(const QString &stored, const QList<LanguageRow> &offered);

/// True when a change of the language has to be confirmed before it holds.
bool NeedsRussianConfirmation(const QString &previous, const QString &chosen);

/// What a start leaves behind in the defaults store, by key. A Russian choice holds for one batch only: the
/// stored language stays as it was.
QVariantMap RememberedChoices(const StartChoices &choices);

} // namespace tuppi

#pragma once

#include <QString>

#include <functional>

QT_BEGIN_NAMESPACE
class QWidget;
QT_END_NAMESPACE

namespace tuppi {

/// Asks, over `window`, for another title of a transcript. `then` is called with what was typed, as one line;
/// not at all when that is nothing or the person changed their mind.
void askForTitle(QWidget *window, const QString &title, std::function<void(const QString &)> then);

} // namespace tuppi

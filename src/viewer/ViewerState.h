#pragma once

#include <QHash>
#include <QString>

#include <memory>

namespace tuppi {

class ResultWindow;
class WebViews;

/// The open result windows.
struct ViewerState
{
    ViewerState();
    ~ViewerState();

    std::unique_ptr<WebViews> views;              ///< null until the first page is shown
    QHash<QString, ResultWindow *> resultWindows; ///< by ResultPlan::key(); out of it as soon as they close
};

} // namespace tuppi

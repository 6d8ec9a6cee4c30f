#pragma once

#include <QString>

#include <memory>

namespace tuppi {

class MainWindow;
class Stage;

/// The windows that live as long as the application, and what they share. Empty without a display.
struct UiState
{
    UiState();
    ~UiState();

    QString language;              ///< of the interface, in use
    std::unique_ptr<Stage> stage;  ///< outlives the windows
    std::unique_ptr<MainWindow> window;
};

} // namespace tuppi

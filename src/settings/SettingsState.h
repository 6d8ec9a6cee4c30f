#pragma once

#include <memory>

namespace tuppi {

class AboutWindow;
class AcknowledgementsWindow;
class FolderSize;
class SettingsWindow;

/// The Settings window and its companions: each made on first use, then kept.
struct SettingsState
{
    SettingsState();
    ~SettingsState();

    std::unique_ptr<SettingsWindow> window;
    std::unique_ptr<AcknowledgementsWindow> acknowledgements;
    std::unique_ptr<AboutWindow> about;
    std::unique_ptr<FolderSize> folderSize;
};

} // namespace tuppi

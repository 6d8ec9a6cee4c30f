#pragma once

#include "app/WaitingQueue.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace tuppi {

/// What the command line asks for.
struct Options
{
    enum class Mode { Window, Transcribe, Help, Version, UsageError };
    Mode mode = Mode::Window;
    QStringList files;               ///< full paths of accepted, existing files, in order
    // The choices of a transcription; for the window, which has a panel for them, any is a usage error.
    std::optional<QString> model;    ///< where absent, the stored starting choice holds
    std::optional<QString> language;
    bool speakers = true;            ///< false: not wanted, whatever the stored choice says
    bool textOnly = false;           ///< true: wanted, whatever the stored choice says
    QString message;                 ///< the help text, or what is wrong with the line
};

/// Reads the arguments that follow the program's name. File names are checked: with --transcribe one that is
/// missing or not accepted is a usage error, for the window it is left out, as a drop would do.
Options ParseOptions(const QStringList &arguments);

} // namespace tuppi

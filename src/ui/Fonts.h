#pragma once

#include <QFont>

#include <future>
#include <thread>

namespace tuppi {

/// Reads the computer's list of fonts on a thread of its own, while the application object comes up and the program
/// reads its settings: the first text on the screen would wait for it otherwise.
class FontsAhead
{
public:
    FontsAhead();
    ~FontsAhead();
    Q_DISABLE_COPY_MOVE(FontsAhead)

    /// To be told when there is an application object: the toolkit's own list is made with its help.
    void applicationIsUp();
    /// Waits for the lists: whoever needs them before they are there would read them a second time.
    void wait();

private:
    std::promise<bool> m_application; ///< whether there is one, or will be none
    bool m_told = false;
    std::thread m_thread;
};

/// The system's font at a size in logical pixels and a weight. Qt draws whole pixels only, so half a pixel is
/// rounded up here, where it shows, and not when the font is looked up.
QFont System(double size, QFont::Weight weight = QFont::Normal);

/// The same in a rounded design: the first rounded family that is installed, else the system's own.
QFont Rounded(double size, QFont::Weight weight = QFont::Normal);

/// The family that Rounded() uses out of those installed; empty when there is none.
QString RoundedFamily(const QStringList &installed);

} // namespace tuppi

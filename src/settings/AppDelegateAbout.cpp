#include "app/AppDelegate.h"

#include "settings/AboutWindow.h"
#include "settings/Acknowledgements.h"
#include "settings/AcknowledgementsWindow.h"

#include <QApplication>
#include <QDesktopServices>

namespace tuppi {

void AppDelegate::showAbout()
{
    if (!m_settings.about) {
        m_settings.about = std::make_unique<AboutWindow>(QCoreApplication::applicationVersion());
        connect(m_settings.about.get(), &AboutWindow::command, this, &AppDelegate::perform);
    }
    m_settings.about->bringForward();
}

void AppDelegate::showAcknowledgements()
{
    if (!m_settings.acknowledgements) {
        m_settings.acknowledgements = std::make_unique<AcknowledgementsWindow>(Acknowledgements());
        connect(m_settings.acknowledgements.get(), &AcknowledgementsWindow::linkChosen, this, &AppDelegate::openUrl);
        connect(m_settings.acknowledgements.get(), &AcknowledgementsWindow::command, this, &AppDelegate::perform);
    }
    m_settings.acknowledgements->bringForward();
}

/// Shows a page, a file or a folder in the program that the person has for it.
void AppDelegate::openUrl(const QUrl &url)
{
    if (!QDesktopServices::openUrl(url))
        QApplication::beep();
}

} // namespace tuppi

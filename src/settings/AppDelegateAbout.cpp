#include "app/AppDelegate.h"

#include "platform/OpenPath.h"
#include "settings/AboutWindow.h"
#include "settings/Acknowledgements.h"
#include "settings/AcknowledgementsWindow.h"
#include "settings/L.h"

#include <QCoreApplication>

namespace tuppi {

using namespace Qt::StringLiterals;

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
        connect(m_settings.acknowledgements.get(), &AcknowledgementsWindow::linkChosen, this, &AppDelegate::openPage);
        connect(m_settings.acknowledgements.get(), &AcknowledgementsWindow::command, this, &AppDelegate::perform);
    }
    m_settings.acknowledgements->bringForward();
}

void AppDelegate::openPage(const QUrl &page)
{
    if (!OpenUrl(page))
        flash(L(u"There is no program to open it with."_s));
}

} // namespace tuppi

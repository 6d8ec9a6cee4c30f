#include "ui/Fonts.h"

#include <QApplication>
#include <QFontDatabase>

#include <fontconfig/fontconfig.h>

namespace tuppi {

using namespace Qt::StringLiterals;

QFont System(double size, QFont::Weight weight)
{
    QFont font = QApplication::font();
    font.setPixelSize(qMax(1, qRound(size)));
    font.setWeight(weight);
    return font;
}

QFont Rounded(double size, QFont::Weight weight)
{
    QFont font = System(size, weight);
    const QString family = RoundedFamily(QFontDatabase::families());
    if (!family.isEmpty()) {
        // The system's families stay behind it, for the scripts that a rounded font seldom holds.
        font.setFamilies(QStringList(family) + font.families());
    }
    return font;
}

FontsAhead::FontsAhead()
    : m_thread([application = m_application.get_future()]() mutable {
        FcInit();
        if (application.get())
            QFontDatabase::families();
    })
{
}

FontsAhead::~FontsAhead()
{
    if (!m_told)
        m_application.set_value(false);
    wait();
}

void FontsAhead::applicationIsUp()
{
    m_told = true;
    m_application.set_value(true);
}

void FontsAhead::wait()
{
    if (m_thread.joinable())
        m_thread.join();
}

QString RoundedFamily(const QStringList &installed)
{
    static const QStringList rounded{u"Nunito"_s,           u"Quicksand"_s,
                                     u"Varela Round"_s,     u"M PLUS Rounded 1c"_s,
                                     u"Rounded Mplus 1c"_s, u"Comfortaa"_s};
    for (const QString &family : rounded) {
        if (installed.contains(family, Qt::CaseInsensitive))
            return family;
    }
    return {};
}

} // namespace tuppi

#include "export/ShareMenu.h"

#include <QApplication>
#include <QMenu>

namespace tuppi {

using namespace Qt::StringLiterals;

void openShareMenu(QWidget *anchor, const QList<ShareChoice> &choices, std::function<void(ShareChoice)> chosen)
{
    if (QApplication::activePopupWidget())
        return;
    auto *menu = new QMenu(anchor->window());
    menu->setObjectName(u"shareMenu"_s);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const ShareChoice choice : choices)
        QObject::connect(menu->addAction(ShareTitle(choice)), &QAction::triggered, menu,
                         [chosen, choice] { chosen(choice); });
    const bool rightToLeft = anchor->isRightToLeft();
    QPoint corner = rightToLeft ? anchor->rect().bottomRight() : anchor->rect().bottomLeft();
    if (rightToLeft)
        corner.rx() -= menu->sizeHint().width();
    menu->popup(anchor->mapToGlobal(corner));
}

} // namespace tuppi

#include "intake/ConfirmRussian.h"

#include "settings/L.h"
#include "ui/AlertSheet.h"

#include <utility>

namespace tuppi {

using namespace Qt::StringLiterals;

void confirmRussianOn(QWidget *window, std::function<void(bool)> then)
{
    constexpr qsizetype use = 0;
    constexpr qsizetype cancel = 1;
    Alert alert;
    alert.message = L(u"Warning! This language is dangerous and can cause war! Use it on your own risk"_s);
    alert.buttons = {{L(u"Use Russian"_s), 2, u"useRussianButton"_s}, {L(u"Cancel"_s), 0, u"cancelRussianButton"_s}};
    alert.safe = cancel;
    alert.warning = true;
    auto *sheet = new AlertSheet(alert, window);
    sheet->setObjectName("confirmRussian"_L1);
    QObject::connect(sheet, &AlertSheet::answered, window,
                     [answer = std::move(then)](qsizetype button) { answer(button == use); });
    sheet->open();
}

} // namespace tuppi

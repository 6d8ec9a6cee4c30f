#include "intake/ConfirmRussian.h"

#include "settings/L.h"
#include "ui/Sheet.h"

namespace tuppi {

using namespace Qt::StringLiterals;

void confirmRussianOn(QWidget *window, std::function<void(bool)> then)
{
    constexpr int use = 0;
    constexpr int cancel = 1;
    SheetText text;
    text.message = L(u"Warning! This language is dangerous and can cause war! Use it on your own risk"_s);
    text.buttons = {L(u"Use Russian"_s), L(u"Cancel"_s)};
    text.defaultButton = cancel;
    text.escapeButton = cancel;
    text.destructiveButton = use;
    text.isWarning = true;
    Sheet::open(window, text, [then = std::move(then)](int button) { then(button == use); });
}

} // namespace tuppi

#include "actions/RenameSheet.h"

#include "actions/RowRules.h"
#include "settings/Fill.h"
#include "settings/L.h"
#include "ui/Metrics.h"
#include "ui/Sheet.h"

#include <QLineEdit>

namespace tuppi {

using namespace Qt::StringLiterals;

void askForTitle(QWidget *window, const QString &title, std::function<void(const QString &)> then)
{
    constexpr int rename = 0;
    constexpr int cancel = 1;
    SheetText text;
    text.message = L(u"Rename transcript"_s);
    text.buttons = {L(u"Rename"_s), L(u"Cancel"_s)};
    text.defaultButton = rename;
    text.escapeButton = cancel;
    auto *field = new QLineEdit(title);
    field->setMaxLength(longestTitle);
    field->setObjectName(u"titleField"_s);
    field->setAccessibleName(text.message);
    field->setTextMargins(4, 0, 4, 0);
    field->setFixedSize(Metrics::titleFieldWidth, Metrics::titleFieldHeight);
    // The sheet outlives its answer, and so does the field in it.
    Sheet *sheet = Sheet::open(window, text, [field, then = std::move(then)](int button) {
        const QString typed = OneLine(field->text());
        if (button == rename && !typed.isEmpty())
            then(typed);
    });
    sheet->setAccessory(field);
    field->selectAll();
}

} // namespace tuppi

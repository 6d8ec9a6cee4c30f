#include "settings/PaneParts.h"

#include "settings/BaselineForm.h"
#include "ui/Colours.h"
#include "ui/Fonts.h"
#include "ui/Labels.h"
#include "ui/Metrics.h"
#include "ui/PillButton.h"
#include "ui/PopUpButton.h"
#include "ui/TickBox.h"

#include <QLineEdit>
#include <QVBoxLayout>

namespace tuppi {

QColor ColourOf(Tone tone)
{
    switch (tone) {
    case Tone::Quiet:
        return Colours::slate;
    case Tone::News:
        return Colours::accentBlue;
    case Tone::Good:
        return Colours::good;
    case Tone::Attention:
        return Colours::attention;
    }
    return Colours::slate;
}

QLabel *formLabel(const QString &text)
{
    auto *label = new ElidedLabel;
    label->setFont(System(13, QFont::Medium));
    label->setText(text);
    return label;
}

TickBox *toggle(const QString &title, const QString &key, bool on)
{
    auto *box = new TickBox(title);
    box->setObjectName(key);
    box->setFont(System(13, QFont::DemiBold));
    box->setChecked(on);
    return box;
}

PopUpButton *popup(const QString &key, const QList<Choice> &choices, const QString &value)
{
    auto *menu = new PopUpButton;
    menu->setObjectName(key);
    setChoices(menu, choices, value);
    return menu;
}

namespace {

/// The items of a menu without its separators.
QList<Choice> choicesIn(const PopUpButton *menu)
{
    QList<Choice> choices;
    for (int item = 0; item < menu->count(); ++item) {
        if (menu->itemData(item).isValid())
            choices.append({menu->itemText(item), menu->itemData(item).toString()});
    }
    return choices;
}

void fill(PopUpButton *menu, const QList<Choice> &choices)
{
    menu->clear();
    for (int item = 0; item < choices.size(); ++item) {
        if (HasSeparatorAbove(choices, item))
            menu->insertSeparator(menu->count());
        menu->addItem(choices.at(item).title, choices.at(item).value);
    }
}

} // namespace

void setChoices(PopUpButton *menu, const QList<Choice> &choices, const QString &value)
{
    if (choicesIn(menu) != choices)
        fill(menu, choices); // a menu that is open stays as it is where nothing has changed
    const int selected = SelectedChoice(choices, value);
    menu->setCurrentIndex(selected < 0 ? -1 : menu->findData(choices.at(selected).value));
    menu->updateGeometry();
}

void selectValue(const QString &value, PopUpButton *menu)
{
    if (const int item = menu->findData(value); item >= 0)
        menu->setCurrentIndex(item);
}

PillButton *paneButton(const QString &title, const QString &name)
{
    PillButton *button = Pill(title, 1, Metrics::sheetButtonHeight);
    button->setObjectName(name);
    return button;
}

QWidget *sideBySide(const QList<QWidget *> &widgets)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    for (QWidget *widget : widgets)
        layout->addWidget(widget);
    row->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    return row;
}

ElidedLabel *paneTitle(const QString &text, const QString &name)
{
    auto *title = new ElidedLabel;
    title->setObjectName(name);
    title->setFont(Rounded(15, QFont::DemiBold));
    title->setText(text);
    return title;
}

QLayout *paneHint(const QString &text, int width)
{
    WrapLabel *label = hint(text);
    label->setPreferredWidth(width);
    label->setMaximumWidth(width);
    auto *row = new QHBoxLayout;
    row->addWidget(label, 1);
    row->addStretch();
    return row;
}

QVBoxLayout *paneColumn(QWidget *pane, int spacing)
{
    auto *column = new QVBoxLayout(pane);
    column->setContentsMargins(PaneMetrics::margins);
    column->setSpacing(spacing);
    return column;
}

QWidget *pane(BaselineForm *rows, const QString &note)
{
    auto *pane = new QWidget;
    QVBoxLayout *column = paneColumn(pane, 18);
    column->addLayout(rows);
    if (!note.isEmpty())
        column->addLayout(paneHint(note, PaneMetrics::noteWidth));
    return pane;
}

void addRow(BaselineForm *rows, const QString &label, QWidget *control)
{
    if (label.isEmpty()) {
        rows->addRow(nullptr, control);
        return;
    }
    QLabel *left = formLabel(label);
    left->setBuddy(control);
    if (qobject_cast<PopUpButton *>(control) || qobject_cast<QLineEdit *>(control))
        control->setAccessibleName(label);
    rows->addRow(left, control);
}

BaselineForm *paneForm()
{
    auto *form = new BaselineForm;
    form->setSpacing(14);
    return form;
}

} // namespace tuppi

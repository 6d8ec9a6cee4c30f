#include "ui/Accessibility.h"

#include "ui/MascotView.h"
#include "ui/ModelCard.h"
#include "ui/RowView.h"
#include "ui/SkyBar.h"
#include "ui/TabAccessibility.h"
#include "ui/TranscriptList.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QPushButton>
#include <QTabBar>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

/// A progress indicator with a value from 0 to 1, and with none while the amount is unknown.
class BarInterface : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit BarInterface(SkyBar *bar)
        : QAccessibleWidget(bar, QAccessible::ProgressBar)
    {
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface && !bar()->isIndeterminate())
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = true;
        state.busy = bar()->isIndeterminate();
        return state;
    }

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Value)
            return bar()->isIndeterminate() ? QString() : QString::number(bar()->value());
        return QAccessibleWidget::text(kind);
    }

    QVariant currentValue() const override
    {
        return bar()->isIndeterminate() ? QVariant() : QVariant(bar()->value());
    }
    void setCurrentValue(const QVariant &) override {}
    QVariant minimumValue() const override { return 0.0; }
    QVariant maximumValue() const override { return 1.0; }
    QVariant minimumStepSize() const override { return 0.0; }

private:
    SkyBar *bar() const { return static_cast<SkyBar *>(widget()); }
};

/// One choice, whole: its labels are its name and description and no elements of their own.
class CardInterface : public QAccessibleWidget
{
public:
    explicit CardInterface(ModelCard *card)
        : QAccessibleWidget(card, QAccessible::RadioButton)
    {
    }

    int childCount() const override { return 0; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = true;
        state.checked = card()->isPicked();
        return state;
    }

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Value)
            return card()->isPicked() ? u"1"_qs : u"0"_qs;
        return QAccessibleWidget::text(kind);
    }

    QStringList actionNames() const override
    {
        return QStringList(pressAction()) + QAccessibleWidget::actionNames();
    }

    void doAction(const QString &name) override
    {
        if (name == pressAction())
            card()->press();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    ModelCard *card() const { return static_cast<ModelCard *>(widget()); }
};

/// A group named by title and detail, with the buttons in reading order after the bar. The labels are left
/// out: they would say the name over again.
class RowInterface : public QAccessibleWidget
{
public:
    explicit RowInterface(RowView *row)
        : QAccessibleWidget(row, QAccessible::Grouping)
    {
    }

    int childCount() const override { return int(parts().size()); }

    QAccessibleInterface *child(int index) const override
    {
        return QAccessible::queryAccessibleInterface(parts().value(index));
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return child ? int(parts().indexOf(static_cast<QWidget *>(child->object()))) : -1;
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.selectable = true;
        state.selected = row()->isSelected();
        state.focusable = list() != nullptr;
        state.focused = list() && list()->hasFocus() && row()->isSelected();
        return state;
    }

    QStringList actionNames() const override { return {setFocusAction(), showMenuAction()}; }

    void doAction(const QString &name) override
    {
        if (!list())
            return;
        list()->focusRow(row());
        if (name == showMenuAction()) {
            const QPoint centre = row()->rect().center();
            QContextMenuEvent asked(QContextMenuEvent::Keyboard, centre, row()->mapToGlobal(centre));
            QCoreApplication::sendEvent(row(), &asked);
        }
    }

private:
    RowView *row() const { return static_cast<RowView *>(widget()); }

    /// The row is its viewport's child; none when it stands somewhere else.
    TranscriptList *list() const
    {
        const QWidget *viewport = row()->parentWidget();
        return viewport ? qobject_cast<TranscriptList *>(viewport->parentWidget()) : nullptr;
    }

    QList<QWidget *> parts() const
    {
        QList<QWidget *> parts;
        if (row()->look().hasBar())
            parts.append(row()->bar());
        for (QPushButton *button : row()->buttons())
            parts.append(button);
        return parts;
    }
};

/// The keyboard is on the selected row, which gets its keys from the list.
class ListInterface : public QAccessibleWidget
{
public:
    explicit ListInterface(TranscriptList *list)
        : QAccessibleWidget(list, QAccessible::List)
    {
    }

    QAccessibleInterface *focusChild() const override
    {
        const auto *list = static_cast<TranscriptList *>(widget());
        RowView *row = list->hasFocus() ? list->viewAt(list->selectedIndex()) : nullptr;
        return row ? QAccessible::queryAccessibleInterface(row) : QAccessibleWidget::focusChild();
    }
};

/// Not there for assistive tools.
class DecorationInterface : public QAccessibleWidget
{
public:
    explicit DecorationInterface(QWidget *widget)
        : QAccessibleWidget(widget, QAccessible::Graphic)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invisible = true;
        return state;
    }
};

/// Windows that are plain widgets have no role for the toolkit.
QAccessibleInterface *windowInterface(QWidget *widget)
{
    if (widget->windowType() == Qt::Window && widget->isWindow())
        return new QAccessibleWidget(widget, QAccessible::Window);
    return widget->windowType() == Qt::Dialog ? new QAccessibleWidget(widget, QAccessible::Dialog) : nullptr;
}

QAccessibleInterface *controlInterface(const QString &key, QObject *object)
{
    if (auto *bar = qobject_cast<SkyBar *>(object))
        return new BarInterface(bar);
    if (auto *card = qobject_cast<ModelCard *>(object))
        return new CardInterface(card);
    if (auto *row = qobject_cast<RowView *>(object))
        return new RowInterface(row);
    if (auto *mascot = qobject_cast<MascotView *>(object))
        return new DecorationInterface(mascot);
    // As a scroll area, which it is to the toolkit, it would have no role.
    if (auto *list = qobject_cast<TranscriptList *>(object))
        return new ListInterface(list);
    if (auto *tabs = qobject_cast<QTabBar *>(object))
        return new TabsInterface(tabs);
    return key == "QWidget"_L1 ? windowInterface(static_cast<QWidget *>(object)) : nullptr;
}

} // namespace

void installControlAccessibility()
{
    static const bool installed = [] {
        QAccessible::installFactory(controlInterface);
        return true;
    }();
    Q_UNUSED(installed)
}

} // namespace tuppi

#include "ui/TabAccessibility.h"

#include <QPointer>
#include <QTabBar>

namespace tuppi {
namespace {

class TabInterface : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    TabInterface(QTabBar *bar, int index)
        : m_bar(bar)
        , m_index(index)
    {
    }

    int index() const { return m_index; }

    bool isValid() const override { return m_bar && m_index < m_bar->count(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return m_bar ? m_bar->window()->windowHandle() : nullptr; }
    QAccessible::Role role() const override { return QAccessible::PageTab; }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(m_bar.data()); }
    int childCount() const override { return 0; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }

    QRect rect() const override
    {
        return isValid() ? m_bar->tabRect(m_index).translated(m_bar->mapToGlobal(QPoint())) : QRect();
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invalid = !isValid();
        if (state.invalid)
            return state;
        const bool isCurrent = m_bar->currentIndex() == m_index;
        state.invisible = !m_bar->isVisible();
        state.disabled = !m_bar->isTabEnabled(m_index);
        state.selectable = true;
        state.selected = isCurrent;
        state.focusable = m_bar->focusPolicy() != Qt::NoFocus;
        state.focused = isCurrent && m_bar->hasFocus();
        return state;
    }

    QString text(QAccessible::Text kind) const override
    {
        return isValid() && kind == QAccessible::Name ? m_bar->accessibleTabName(m_index) : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString &name) override
    {
        if (isValid() && name == pressAction())
            m_bar->setCurrentIndex(m_index);
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    QPointer<QTabBar> m_bar;
    int m_index;
};

} // namespace

TabsInterface::TabsInterface(QTabBar *bar)
    : QAccessibleWidget(bar, QAccessible::PageTabList)
{
}

TabsInterface::~TabsInterface()
{
    for (const QAccessible::Id id : std::as_const(m_tabs))
        QAccessible::deleteAccessibleInterface(id);
}

QTabBar *TabsInterface::bar() const
{
    return static_cast<QTabBar *>(widget());
}

int TabsInterface::childCount() const
{
    return bar()->count();
}

QAccessibleInterface *TabsInterface::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    if (!m_tabs.contains(index))
        m_tabs.insert(index, QAccessible::registerAccessibleInterface(new TabInterface(bar(), index)));
    return QAccessible::accessibleInterface(m_tabs.value(index));
}

int TabsInterface::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *tab = dynamic_cast<const TabInterface *>(child);
    return tab ? tab->index() : -1;
}

QAccessibleInterface *TabsInterface::childAt(int x, int y) const
{
    return child(bar()->tabAt(bar()->mapFromGlobal(QPoint(x, y))));
}

QAccessibleInterface *TabsInterface::focusChild() const
{
    return bar()->hasFocus() ? child(bar()->currentIndex()) : nullptr;
}

} // namespace tuppi

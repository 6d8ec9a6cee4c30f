#pragma once

#include <QAccessibleWidget>
#include <QHash>

class QTabBar;

namespace tuppi {

/// A row of tabs whose tabs tell which of them is selected; those of the toolkit do not.
class TabsInterface : public QAccessibleWidget
{
public:
    explicit TabsInterface(QTabBar *bar);
    ~TabsInterface() override;

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;

private:
    QTabBar *bar() const;

    mutable QHash<int, QAccessible::Id> m_tabs; ///< made when they are first asked for
};

} // namespace tuppi

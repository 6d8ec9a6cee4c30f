#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>

namespace tuppi {

/// True when some part of the widget is on the screen: shown, not scrolled or clipped away, its window
/// neither minimised nor covered by the window system.
bool isInSight(const QWidget &widget);

/// The widgets that move. A widget enters by being painted, which is the sure sign that it came into sight,
/// and is forgotten at the first look that does not find it there. A window that comes back from being
/// minimised or covered may show its old picture without painting anything: cameBack() then asks all to paint
/// themselves.
class SightList : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    void add(QWidget *widget);
    /// Those still in sight; the others are forgotten.
    QList<QWidget *> look();
    void clear() { m_widgets.clear(); }

Q_SIGNALS:
    void cameBack();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QList<QPointer<QWidget>> m_widgets;
};

} // namespace tuppi

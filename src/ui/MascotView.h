#pragma once

#include <QWidget>

namespace tuppi {

class Mascots;

/// The size of a mascot of the given width, in logical pixels.
QSize MascotSize(int width);

/// Tuppi in one pose, still or animated. Decorative: hidden from assistive tools, and no target for the
/// mouse.
class MascotView : public QWidget
{
    Q_OBJECT
public:
    MascotView(Mascots &mascots, const QString &pose, int width, bool animated, QWidget *parent = nullptr);

    QString pose() const { return m_pose; }
    void setPose(const QString &pose);
    /// Whether it moves when it may.
    bool isAnimated() const { return m_animated; }

    QSize sizeHint() const override { return size(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Mascots &m_mascots;
    QString m_pose;
    bool m_animated;
};

MascotView *TuppiView(Mascots &mascots, const QString &pose, int width, QWidget *parent = nullptr);
MascotView *TuppiAnim(Mascots &mascots, const QString &pose, int width, QWidget *parent = nullptr);

} // namespace tuppi

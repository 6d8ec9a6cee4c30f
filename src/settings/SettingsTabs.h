#pragma once

#include <QTabBar>

namespace tuppi {

/// The tabs of the Settings window: symbols over titles, side by side in the middle. The arrow keys, Home and End
/// go through them.
class SettingsTabs : public QTabBar
{
    Q_OBJECT
public:
    explicit SettingsTabs(QWidget *parent = nullptr);

    void addTabOf(const QString &symbol, const QString &title);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void paintTab(QPainter &painter, int index, bool lit) const;
};

} // namespace tuppi

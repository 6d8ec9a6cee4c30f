#pragma once

#include <QColor>
#include <QWidget>

namespace tuppi {

/// One symbol in a square of its own size. Decorative.
class SymbolView : public QWidget
{
    Q_OBJECT
public:
    SymbolView(const QString &name, const QColor &tint, int size, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_name;
    QColor m_tint;
};

} // namespace tuppi

#include "ui/SymbolView.h"

#include "ui/Painting.h"

#include <QPainter>

namespace tuppi {

SymbolView::SymbolView(const QString &name, const QColor &tint, int size, QWidget *parent)
    : QWidget(parent)
    , m_name(name)
    , m_tint(tint)
{
    setFixedSize(size, size);
}

void SymbolView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    drawSymbol(painter, m_name, m_tint, height(), QRectF(rect()));
}

} // namespace tuppi

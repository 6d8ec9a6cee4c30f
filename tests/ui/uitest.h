#pragma once

#include "support/Eventually.h"

#include <QAccessible>
#include <QEvent>
#include <QImage>
#include <QPaintEvent>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>

/// The widget as it paints itself, at a device pixel ratio, on nothing: pixel (x, y) is a device pixel.
inline QImage pictureOf(QWidget &widget, double ratio = 1)
{
    QImage image((QSizeF(widget.size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image.convertToFormat(QImage::Format_ARGB32);
}

/// Equal but for the rounding of blending.
inline bool near(const QColor &a, const QColor &b, int by = 2)
{
    return qAbs(a.red() - b.red()) <= by && qAbs(a.green() - b.green()) <= by &&
           qAbs(a.blue() - b.blue()) <= by && qAbs(a.alpha() - b.alpha()) <= by;
}

inline void PrintTo(const QColor &colour, std::ostream *out)
{
    *out << colour.name(QColor::HexArgb).toStdString();
}
inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << '"' << text.toStdString() << '"';
}

#define EXPECT_COLOUR(actual, expected)                                                                      \
    EXPECT_PRED2([](const QColor &a, const QColor &b) { return near(a, b); }, QColor(actual),                \
                 QColor(expected))

/// Counts the paint events of a widget.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget *widget) { widget->installEventFilter(this); }
    int count = 0;
    QRegion last;
    QRegion all;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            ++count;
            last = static_cast<QPaintEvent *>(event)->region();
            all += last;
        }
        return QObject::eventFilter(watched, event);
    }
};

inline void showAndWait(QWidget &widget)
{
    widget.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
}

inline QAccessibleInterface *accessible(QObject *object)
{
    return QAccessible::queryAccessibleInterface(object);
}

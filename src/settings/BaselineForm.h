#pragma once

#include <QLayout>
#include <QList>

namespace tuppi {

/// Rows of a label and a control, each row's texts on one line. The label column is as wide as its widest label;
/// everything stands at the leading edge. The spacing is that between rows.
class BaselineForm : public QLayout
{
    Q_OBJECT
public:
    explicit BaselineForm(QWidget *parent = nullptr);
    ~BaselineForm() override;

    /// Takes both over. A row may do without a label (null).
    void addRow(QWidget *label, QWidget *control);

    int count() const override;
    QLayoutItem *itemAt(int index) const override;
    QLayoutItem *takeAt(int index) override;
    void addItem(QLayoutItem *item) override;

    QSize sizeHint() const override;
    QSize minimumSize() const override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    void setGeometry(const QRect &rect) override;

private:
    struct Row
    {
        QLayoutItem *label = nullptr;
        QLayoutItem *control = nullptr;
    };
    struct RowPlace;

    int labelWidth() const;
    RowPlace placeOf(const Row &row, int top, int controlWidth) const;
    QSize sizeFor(bool minimum) const;

    QList<Row> m_rows;
};

/// Where the first line of a widget's text stands, in pixels below its upper edge, when the widget is as high as it
/// likes to be; of a container, that of its first widget.
int FirstBaseline(const QWidget *widget);

} // namespace tuppi

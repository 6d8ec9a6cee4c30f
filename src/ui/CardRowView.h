#pragma once

#include <QWidget>

namespace tuppi {

/// The ground of one list row: a white card, outlined in the accent blue while its transcript is being worked
/// on, and faintly while it is merely selected.
void paintCardRow(QPainter &painter, const QRectF &bounds, bool activeCard, bool selected);

/// A row that paints that ground, with a ring inside the card while the keyboard is on it.
class CardRowView : public QWidget
{
    Q_OBJECT
public:
    using QWidget::QWidget;

    bool isActiveCard() const { return m_activeCard; }
    void setActiveCard(bool active);
    bool isSelected() const { return m_selected; }
    void setSelected(bool selected);
    bool showsFocus() const { return m_showsFocus; }
    void setShowsFocus(bool shown);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_activeCard = false;
    bool m_selected = false;
    bool m_showsFocus = false;
};

} // namespace tuppi

#pragma once

#include <QList>
#include <QUrl>
#include <QWidget>

namespace tuppi {

/// An area that takes recordings dropped on it. It lights up while a drag that carries at least one is over
/// it, and draws a dashed card when lit or when asked to.
class DropView : public QWidget
{
    Q_OBJECT
public:
    explicit DropView(QWidget *parent = nullptr);

    bool isHighlighted() const { return m_highlighted; }
    bool showsCard() const { return m_showsCard; }
    void setShowsCard(bool shows);

Q_SIGNALS:
    void filesDropped(const QList<QUrl> &files);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void setHighlighted(bool highlighted);

    bool m_highlighted = false;
    bool m_showsCard = false;
};

} // namespace tuppi

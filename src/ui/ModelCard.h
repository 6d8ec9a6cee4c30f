#pragma once

#include <QWidget>

namespace tuppi {

class BadgeLabel;
class WrapLabel;

/// A choice among models: one target, whatever lies inside it. A click (released inside), a space, a return
/// and the press of an assistive tool all emit chosen() and change nothing here: whoever listens sets picked.
class ModelCard : public QWidget
{
    Q_OBJECT
public:
    explicit ModelCard(const QString &engine, QWidget *parent = nullptr);

    /// The model's id.
    QString engine() const { return m_engine; }

    /// Title, note (a badge; left out when empty) and description, whose last line is shown and whose whole
    /// is the tool tip.
    void setTexts(const QString &title, const QString &note, const QString &description);

    bool isPicked() const { return m_picked; }
    void setPicked(bool picked);
    QColor border() const;
    QColor background() const;
    double radius() const;

    void press();

Q_SIGNALS:
    void chosen(tuppi::ModelCard *card);

protected:
    void childEvent(QChildEvent *event) override;
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_engine;
    bool m_picked = false;
    WrapLabel *m_title;
    BadgeLabel *m_note;
    WrapLabel *m_description;
};

} // namespace tuppi

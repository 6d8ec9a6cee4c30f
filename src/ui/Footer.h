#pragma once

#include <QRect>
#include <QWidget>

namespace tuppi {

class ElidedLabel;
class IconButton;
class PillButton;

/// Where the summary line stands in the bar, left to right: centred in it while it fits there, else moved and
/// shortened so that it keeps clear of the buttons on both sides. Logical pixels.
QRect SummaryRect(QRect bar, int textWidth, int leftEnd, int rightStart);

/// The rounded bar at the bottom of the main window.
class Footer : public QWidget
{
    Q_OBJECT
public:
    explicit Footer(QWidget *parent = nullptr);

    void setSummary(const QString &text);
    QString summary() const;
    /// The speaker button shows whether sounds are on and offers the opposite.
    void setSoundsOn(bool on);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The name of the controller's command.
    void command(const QString &action);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void arrange();

    PillButton *m_add;
    ElidedLabel *m_summary;
    IconButton *m_sound;
    IconButton *m_settings;
    IconButton *m_clear;
    PillButton *m_folder;
};

} // namespace tuppi

#pragma once

#include <QDialog>
#include <QString>
#include <QStringList>

#include <functional>

namespace tuppi {

class PillButton;
class WrapLabel;

/// What a sheet says and offers. The texts are localised already.
struct SheetText
{
    QString message;
    QString detail;
    QStringList buttons;       ///< in order; empty for a single OK
    int defaultButton = 0;     ///< answers Return
    int escapeButton = -1;     ///< answers Escape; -1 for the default one
    int destructiveButton = -1;
    bool isWarning = false;    ///< marked with the warning sign
};

/// A question or a message over a window: window-modal, answered later, never waited for. A detail text that is too long
/// for the screen scrolls.
class Sheet : public QDialog
{
    Q_OBJECT
public:
    /// Shows the sheet over `window` (which owns it until it is answered) and calls `answered` with the index
    /// of the chosen button, once, while the window lives.
    static Sheet *open(QWidget *window, const SheetText &text, std::function<void(int)> answered = {});

    const SheetText &text() const { return m_text; }
    /// Below the detail text, above the buttons. Takes the widget over; it gets the keyboard first.
    void setAccessory(QWidget *accessory);
    /// Answers the sheet as a click on that button would.
    void answer(int button);

Q_SIGNALS:
    void answered(int button);

protected:
    void reject() override;
    void paintEvent(QPaintEvent *event) override;

private:
    Sheet(QWidget *window, const SheetText &text);
    void keepOnScreen(WrapLabel *detail);
    PillButton *addButton(int index, const QString &title);

    SheetText m_text;
    QWidget *m_accessoryPlace = nullptr;
    bool m_isAnswered = false;
};

} // namespace tuppi

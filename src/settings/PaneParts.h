#pragma once

#include "settings/Health.h"
#include "settings/SettingsChoices.h"

#include <QColor>
#include <QMargins>

QT_BEGIN_NAMESPACE
class QLabel;
class QLayout;
class QVBoxLayout;
class QWidget;
QT_END_NAMESPACE

namespace tuppi {

class BaselineForm;
class ElidedLabel;
class PillButton;
class PopUpButton;
class TickBox;

/// What the panes of the Settings window are made of.
namespace PaneMetrics {

inline constexpr int width = 560;
inline constexpr int widest = 900; ///< as far as a translation may stretch a pane
inline constexpr int leastHeight = 120;
inline constexpr QMargins margins{32, 24, 32, 28};
inline constexpr int noteWidth = 470;
inline constexpr int hintWidth = 400;

} // namespace PaneMetrics

QColor ColourOf(Tone tone);

/// The left half of a row.
QLabel *formLabel(const QString &text);
/// A check box bound to a key of the defaults store, which is its object name.
TickBox *toggle(const QString &title, const QString &key, bool on);
/// A menu bound to a key of the defaults store, which is its object name.
PopUpButton *popup(const QString &key, const QList<Choice> &choices, const QString &value);
/// Puts other items into a menu and selects one, without a word to whoever listens to it.
void setChoices(PopUpButton *menu, const QList<Choice> &choices, const QString &value);
/// Selects the first item of that value, if there is one.
void selectValue(const QString &value, PopUpButton *menu);
PillButton *paneButton(const QString &title, const QString &name);
/// Buttons or other small things side by side.
QWidget *sideBySide(const QList<QWidget *> &widgets);
/// A heading within a pane.
ElidedLabel *paneTitle(const QString &text, const QString &name);

/// A hint at the leading edge, wrapped at a width.
QLayout *paneHint(const QString &text, int width = PaneMetrics::hintWidth);

/// The column of a pane; `spacing` is between its views.
QVBoxLayout *paneColumn(QWidget *pane, int spacing);
/// A pane of rows and a note below them, which may be empty.
QWidget *pane(BaselineForm *rows, const QString &note);
/// Adds a row, which may have an empty label, and names its control after the label.
void addRow(BaselineForm *rows, const QString &label, QWidget *control);
/// A form with the spacing of a pane.
BaselineForm *paneForm();

} // namespace tuppi

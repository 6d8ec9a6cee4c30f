#pragma once

#include "list/RowLook.h"
#include "ui/CardRowView.h"
#include "ui/MascotView.h"
#include "ui/RowLayout.h"

#include <QPointer>

QT_BEGIN_NAMESPACE
class QPushButton;
QT_END_NAMESPACE

namespace tuppi {

class ElidedLabel;
class IconButton;
class Mascots;

class PillButton;
class SkyBar;
class SweepClock;
struct TuppiCache;

/// What all rows of a list share. Outlives them.
struct RowServices
{
    SweepClock &sweep;
    Mascots &mascots;
    TuppiCache &cache;
};

/// One row of the list on its card: mascot, title, bar, detail, buttons. Takes plain data and touches only
/// what changed; says what was pressed by the row's key and the command's name. To be used again for other
/// rows: a button that is held down while its row changes under it is let go without effect.
class RowView : public CardRowView
{
    Q_OBJECT
public:
    explicit RowView(RowServices services, QWidget *parent = nullptr);
    ~RowView() override;

    const RowLook &look() const { return m_look; }
    void setLook(const RowLook &look);
    /// Hands back what the row borrowed, before it waits unused in a pool.
    void clearLook();

    MascotView *icon() const { return m_icon; }
    ElidedLabel *title() const { return m_title; }
    ElidedLabel *detail() const { return m_detail; }
    SkyBar *bar() const { return m_bar; }
    /// Those shown now, in reading order.
    QList<QPushButton *> buttons() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void action(const QString &key, const QString &name);

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Slot
    {
        QPushButton *button;
        RowButton look;
    };

    void showIcon();
    void dropIcon();
    void showTexts(const RowLook &before);
    void showBar();
    void showButtons(const QList<RowButton> &looks);
    QPushButton *nextButton(const RowButton &look, int &pills, int &icons);
    void connectButton(QPushButton *button);
    void press(const QPushButton *button);
    void place();

    RowServices m_services;
    RowLook m_look;
    QPointer<MascotView> m_icon;
    MascotView *m_still = nullptr; ///< kept for whatever still pose comes next; made when first needed
    ElidedLabel *m_title;
    ElidedLabel *m_detail;
    SkyBar *m_bar;
    QList<PillButton *> m_pills;
    QList<IconButton *> m_icons;
    QList<Slot> m_slots; ///< the buttons in use
};

} // namespace tuppi

#pragma once

#include "viewer/ResultPlan.h"

#include <QWidget>

#include <functional>

namespace tuppi {

/// A window in which a finished transcript is read, with the export buttons at its top.
class ResultWindow : public QWidget
{
    Q_OBJECT
    /// The transcript's folder: what tells a result window from others.
    Q_PROPERTY(QString callDir READ callDir CONSTANT)
public:
    explicit ResultWindow(const ResultPlan &plan);

    QString callDir() const { return m_plan.callDir; }
    const ResultPlan &plan() const { return m_plan; }

    /// Shows the summary or the transcript of a window that is open already.
    virtual void showTab(bool summary);
    void bringForward();
    /// Calls `then` when all that was corrected here is saved, or will not be; at once where nothing can be. Waiting
    /// has an end: without `complete` some of it failed meanwhile, or may still be under way.
    virtual void whenSaved(std::function<void(bool complete)> then);
    /// Takes a close back. False when it is too late for that.
    virtual bool stay();

Q_SIGNALS:
    /// A command of the menu bar, by its name.
    void command(const QString &action);
    void saveRequested();
    void shareRequested(QWidget *anchor);
    /// The frame is worth remembering: the window is being closed, or was moved or sized a moment ago.
    void frameChanged();
    void closing();

protected:
    /// Below the strip. Takes the widget over; it gets the keyboard first.
    void setContent(QWidget *content);
    /// The window is closed and to be done away with, now or soon.
    virtual void dispose();
    virtual void setZoom(double factor) = 0;
    void closeEvent(QCloseEvent *event) override;

private:
    void addShortcuts();
    void zoomBy(int steps);

    ResultPlan m_plan;
    int m_zoomStep = 0;
};

} // namespace tuppi

#include "viewer/ResultWindow.h"

#include "export/ExportAccessory.h"
#include "ui/Colours.h"
#include "ui/FrameRest.h"
#include "ui/Metrics.h"
#include "ui/WindowCommands.h"

#include <QCloseEvent>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace tuppi {

using namespace Qt::StringLiterals;

ResultWindow::ResultWindow(const ResultPlan &plan)
    : m_plan(plan)
{
    setObjectName(plan.frame());
    setWindowTitle(plan.title);
    QPalette ground = palette();
    ground.setColor(QPalette::Window, plan.isViewer() ? Colours::window : Colours::white);
    setPalette(ground);
    setMinimumSize(Metrics::resultMinimumWidth, Metrics::resultMinimumHeight);
    resize(Metrics::resultWidth, Metrics::resultHeight);
    auto *accessory = new ExportAccessory(this);
    connect(accessory, &ExportAccessory::saveRequested, this, &ResultWindow::saveRequested);
    connect(accessory, &ExportAccessory::shareRequested, this, &ResultWindow::shareRequested);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(accessory);
    addShortcuts();
    whenFrameRests(this, [this] { Q_EMIT frameChanged(); });
}

void ResultWindow::addShortcuts()
{
    const auto add = [this](const QList<QKeySequence> &keys, auto action) {
        for (const QKeySequence &key : keys)
            connect(new QShortcut(key, this), &QShortcut::activated, this, action);
    };
    AddMenuKeys(this, [this](const QString &action) { Q_EMIT command(action); });
    add({QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)}, [this] { zoomBy(1); });
    add({QKeySequence(Qt::CTRL | Qt::Key_Minus)}, [this] { zoomBy(-1); });
    add({QKeySequence(Qt::CTRL | Qt::Key_0)}, [this] { zoomBy(-m_zoomStep); });
}

void ResultWindow::zoomBy(int steps)
{
    constexpr int fewest = -4, most = 10;
    constexpr double factorOfOneStep = 1.1;
    m_zoomStep = std::clamp(m_zoomStep + steps, fewest, most);
    setZoom(std::pow(factorOfOneStep, m_zoomStep));
}

void ResultWindow::setContent(QWidget *content)
{
    auto *column = static_cast<QVBoxLayout *>(layout());
    column->addWidget(content, 1);
    content->setFocus();
}

void ResultWindow::showTab(bool)
{
}

void ResultWindow::bringForward()
{
    bringWindowForward(this);
}

void ResultWindow::whenSaved(std::function<void(bool complete)> then)
{
    then(true);
}

bool ResultWindow::stay()
{
    return false;
}

void ResultWindow::dispose()
{
    deleteLater();
}

void ResultWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    Q_EMIT frameChanged();
    Q_EMIT closing();
    dispose();
}

} // namespace tuppi

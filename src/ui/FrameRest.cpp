#include "ui/FrameRest.h"

#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <utility>

namespace tuppi {

namespace {

class FrameRest : public QObject
{
public:
    FrameRest(QWidget *window, std::function<void()> rested)
        : QObject(window)
    {
        constexpr int restMilliseconds = 1000;
        m_untilItRests.setSingleShot(true);
        m_untilItRests.setInterval(restMilliseconds);
        connect(&m_untilItRests, &QTimer::timeout, this, std::move(rested));
        window->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Move || event->type() == QEvent::Resize)
            m_untilItRests.start();
        else if (event->type() == QEvent::Close)
            m_untilItRests.stop();
        return false;
    }

private:
    QTimer m_untilItRests;
};

} // namespace

void whenFrameRests(QWidget *window, std::function<void()> rested)
{
    new FrameRest(window, std::move(rested));
}

} // namespace tuppi

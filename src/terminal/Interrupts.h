#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace tuppi {

/// Turns SIGINT and SIGTERM into a signal on the event loop. One object per process.
class Interrupts : public QObject
{
    Q_OBJECT
public:
    explicit Interrupts(QObject *parent = nullptr);
    ~Interrupts() override;

Q_SIGNALS:
    void interrupted();

private:
    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tuppi

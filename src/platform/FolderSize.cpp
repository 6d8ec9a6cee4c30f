#include "platform/FolderSize.h"

#include <QProcess>

#include <sys/resource.h>

namespace tuppi {

using namespace Qt::StringLiterals;

FolderSize::FolderSize(const QString &program, QObject *parent)
    : QObject(parent)
    , m_program(program)
{
}

FolderSize::~FolderSize()
{
    if (!m_process)
        return;
    // A process that is stuck in a dead file system does not end when it is killed, and QProcess would wait for it.
    m_process->disconnect(this);
    connect(m_process, &QProcess::finished, m_process, &QObject::deleteLater);
    m_process->kill();
}

void FolderSize::measure(const QString &path)
{
    m_path = path;
    if (!m_process) {
        start();
    } else if (m_running != path) {
        m_process->kill();
        m_running.clear(); // whatever it says now is about no folder
    }
}

void FolderSize::start()
{
    m_running = m_path;
    m_process = new QProcess;
    m_process->setProgram(m_program);
    m_process->setArguments({u"-sk"_s, m_running});
    m_process->setStandardInputFile(QProcess::nullDevice());
    m_process->setStandardErrorFile(QProcess::nullDevice());
    connect(m_process, &QProcess::started, this, [this] {
        constexpr int quietly = 10;
        ::setpriority(PRIO_PROCESS, id_t(m_process->processId()), quietly);
    });
    connect(m_process, &QProcess::finished, this, &FolderSize::ended);
    // A failed start is not followed by an end, and may be told while start() is still running.
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            ended();
    }, Qt::QueuedConnection);
    m_process->start();
}

void FolderSize::ended()
{
    const QByteArray report = m_process->readAllStandardOutput();
    m_process->deleteLater();
    m_process = nullptr;
    if (m_running != m_path)
        start();
    else
        Q_EMIT measured(m_running, report);
}

} // namespace tuppi

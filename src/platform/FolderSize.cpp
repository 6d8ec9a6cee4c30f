#include "platform/FolderSize.h"

#include <QProcess>
#include <QSet>

#include <utility>

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
    if (m_process)
        drop();
}

void FolderSize::measure(const QString &path)
{
    if (m_process && path == m_path)
        return;
    if (m_process)
        drop();
    m_path = path;
    start();
}

void FolderSize::drop()
{
    // Who has those that have not ended yet. It outlives the program, as they may.
    static auto *const ending = new QSet<QProcess *>;
    QProcess *dropped = std::exchange(m_process, nullptr);
    ending->insert(dropped);
    connect(dropped, &QObject::destroyed, [dropped] { ending->remove(dropped); });
    dropped->disconnect(this);
    connect(dropped, &QProcess::finished, dropped, &QObject::deleteLater);
    connect(dropped, &QProcess::errorOccurred, dropped, [dropped](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            dropped->deleteLater();
    });
    dropped->kill();
}

void FolderSize::start()
{
    m_process = new QProcess;
    m_process->setProgram(m_program);
    m_process->setArguments({u"-sk"_s, m_path});
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
    std::exchange(m_process, nullptr)->deleteLater();
    Q_EMIT measured(m_path, report);
}

} // namespace tuppi

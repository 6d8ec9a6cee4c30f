#pragma once

#include "terminal/Report.h"

#include <QObject>
#include <QTextStream>

namespace tuppi {

/// The application without a window: prints what happens to the files of this run and says when, and how, it
/// is over. It is told about the state and never changes it.
class TerminalView : public QObject
{
    Q_OBJECT
public:
    explicit TerminalView(QObject *parent = nullptr);

    void showState(const JobsState &jobs, const QJsonArray &customModels);
    void showPolled(const JobsState &jobs);
    void showStartFinished(const QString &path, bool taken);
    void showFailure(const QString &title, const QString &detail);
    void showNotice(const QString &text);
    /// A message that passes in a window: said once.
    void showPassing(const QString &text);
    /// Ends the run and says what waits for the next one.
    void showEngineMissing(const JobsState &jobs, bool queueIsKept);
    /// Says what goes on without this process and what waits for the next one.
    void showInterrupted(const JobsState &jobs, bool queueIsKept);

Q_SIGNALS:
    /// Everything has come to its end; the exit status of the process.
    void finished(int exitStatus);

private:
    void printLine(const ReportLine &line);
    void endProgressLine();
    void printResults();
    void showWaiting(const WaitingQueue &waiting, bool queueIsKept);

    Report m_report;
    QTextStream m_out;
    QTextStream m_err;
    QStringList m_said;
    bool m_rewritesProgress = false;
    bool m_progressLineOpen = false;
    bool m_failed = false;
    bool m_isOver = false;
};

} // namespace tuppi

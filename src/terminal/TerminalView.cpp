#include "terminal/TerminalView.h"

#include "settings/Fill.h"
#include "settings/L.h"
#include "terminal/FittedLine.h"

#include <QFileInfo>

#include <cstdio>
#include <limits>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

/// Title and text in one row of the terminal, where its width is known.
QString fitted(const QString &title, const QString &text)
{
    winsize size{};
    const bool isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return FittedLine(title, text, isKnown ? size.ws_col : std::numeric_limits<int>::max());
}

} // namespace

TerminalView::TerminalView(QObject *parent)
    : QObject(parent)
    , m_out(stdout)
    , m_err(stderr)
    , m_rewritesProgress(::isatty(STDOUT_FILENO) == 1)
{
}

void TerminalView::printLine(const ReportLine &line)
{
    if (!m_rewritesProgress) {
        m_out << OneLine(line.title + u": "_s + line.text) << Qt::endl;
        return;
    }
    if (line.sameStage && m_progressLineOpen)
        m_out << "\r\x1b[K";
    else
        endProgressLine();
    // Of a line that goes on in the next row, that row alone could be rewritten: the terminal cuts what is too long.
    m_out << "\x1b[?7l" << fitted(OneLine(line.title), OneLine(line.text)) << "\x1b[?7h" << Qt::flush;
    m_progressLineOpen = true;
}

void TerminalView::endProgressLine()
{
    if (m_progressLineOpen)
        m_out << Qt::endl;
    m_progressLineOpen = false;
}

void TerminalView::showState(const JobsState &jobs, const QJsonArray &customModels)
{
    if (m_isOver)
        return;
    const QList<ReportLine> lines = m_report.update(jobs, customModels);
    for (const ReportLine &line : lines)
        printLine(line);
}

void TerminalView::showEngineMissing(const JobsState &jobs, bool queueIsKept)
{
    if (m_isOver)
        return;
    m_isOver = true;
    showNotice(L(u"Tuppi's engine could not be found — please run the installer again."_s));
    showWaiting(jobs.waiting, queueIsKept);
    Q_EMIT finished(1);
}

void TerminalView::showPolled(const JobsState &jobs)
{
    if (m_isOver)
        return;
    const QList<ReportLine> unlisted = m_report.giveUpUnlisted(*jobs.history);
    for (const ReportLine &line : unlisted)
        showFailure(line.title, line.text);
    if (!m_report.isFinished(jobs))
        return;
    m_isOver = true;
    printResults();
    Q_EMIT finished(m_failed || !m_report.allReady() ? 1 : 0);
}

void TerminalView::showStartFinished(const QString &path, bool taken)
{
    m_report.startFinished(path, taken);
}

void TerminalView::showFailure(const QString &title, const QString &detail)
{
    m_failed = true;
    showNotice(detail.isEmpty() ? title : title + u": "_s + detail);
}

void TerminalView::showNotice(const QString &text)
{
    endProgressLine();
    m_err << OneLine(text) << Qt::endl;
}

void TerminalView::showPassing(const QString &text)
{
    if (m_said.contains(text))
        return;
    m_said.append(text);
    showNotice(text);
}

void TerminalView::printResults()
{
    endProgressLine();
    if (m_report.files().isEmpty())
        m_out << L(u"Nothing is waiting."_s) << Qt::endl;
    for (const FollowedFile &file : m_report.files()) {
        if (file.stage == "ready"_L1)
            m_out << OneLine(file.title) << ": " << file.callDir << Qt::endl;
        else if (!file.refused)
            showNotice(file.title + u": "_s + file.text);
    }
}

void TerminalView::showInterrupted(const JobsState &jobs, bool queueIsKept)
{
    m_isOver = true;
    QStringList working;
    if (jobs.starting)
        working.append(TitleOfFile(WaitingPath(jobs.startingEntry)));
    for (const QJsonObject &job : jobs.history->active)
        working.append(job.value("title"_L1).toString());
    if (!working.isEmpty())
        showNotice(Fill(L(u"The engine goes on with “%@”."_s), {working.join(u"”, “"_s)}));
    showWaiting(jobs.waiting, queueIsKept);
}

void TerminalView::showWaiting(const WaitingQueue &waiting, bool queueIsKept)
{
    QStringList names;
    for (const WaitingEntry &entry : waiting)
        names.append(QFileInfo(WaitingPath(entry)).fileName());
    if (!names.isEmpty())
        showNotice(Fill(L(queueIsKept ? u"Still waiting for the next start of Tuppi Transcriber: %@"_s
                                      : u"Not transcribed, and not kept: %@"_s),
                        {names.join(u", "_s)}));
}

} // namespace tuppi

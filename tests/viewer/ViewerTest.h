#pragma once

#include "app/AppTest.h"
#include "ui/Sheet.h"
#include "viewer/ResultWindow.h"
#include "viewer/ViewerWindow.h"
#include "viewer/WebView.h"

#include <QTemporaryDir>

namespace tuppi::test {

/// The real controller with the scripted engine, its window and small pages of the test's own.
class ViewerTest : public AppTest
{
public:
    static WebView *page(ViewerWindow *window);
    /// What an expression is in the page, as JSON; "(no answer)" when the page does not say.
    static QByteArray ask(ViewerWindow *window, const QString &expression, int patienceMilliseconds = 2000);
    static bool becomes(ViewerWindow *window, const QString &expression, const QByteArray &json);

protected:
    void SetUp() override;
    void TearDown() override;

    /// Makes a call dir; a page without a doctype gets a head that keeps the answers in `answers`.
    QString makeCall(const QString &name, const QByteArray &page = {});
    QString callDir(const QString &name) const { return m_calls.filePath(name); }
    static QJsonObject row(const QString &callDir, const QString &title = QStringLiteral("Talk"));
    /// Puts transcripts with ids "id-NAME" into the history.
    void putIntoHistory(const QStringList &names);

    ResultWindow *window(const QString &callDir, const QString &kind = QStringLiteral("viewer")) const;
    ViewerWindow *viewer(const QString &callDir) const;
    /// Opens the page and waits until it has been loaded.
    ViewerWindow *open(const QString &callDir, bool summary = false);
    static void post(ViewerWindow *window, const QString &body);
    static bool isAnswered(ViewerWindow *window, const QByteArray &json)
    {
        return becomes(window, QStringLiteral("answers"), json);
    }
    /// The one that is open, null without.
    static Sheet *sheet();

    QTemporaryDir m_calls;
};

/// Web engine processes of that kind ("renderer") that this process has.
QList<int> engineProcesses(const QByteArray &kind);

} // namespace tuppi::test

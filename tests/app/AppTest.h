#pragma once

#include "app/AppDelegate.h"
#include "settings/Defaults.h"
#include "support/ScriptedEngine.h"

#include <QJsonDocument>

#include <memory>

#include <gtest/gtest.h>

namespace tuppi::test {

/// The real controller with the scripted engine. Without launch() its timer does not run: ticks and polls are
/// then the test's own.
class AppTest : public testing::Test
{
protected:
    using Failure = QPair<QString, QString>;

    QString settingsPath() const { return Defaults::userPath(); }
    QByteArray settingsFile() const
    {
        if (m_defaults)
            m_defaults->flush();
        return readFile(settingsPath());
    }
    QJsonObject settings() const { return object(settingsFile()); }
    QStringList storedPaths() const { return pathsIn(settings()); }
    static QStringList pathsIn(const QJsonObject &settings)
    {
        QStringList paths;
        for (const QJsonValue &entry : settings.value(QStringLiteral("waitingQueue")).toArray())
            paths.append(entry[QStringLiteral("path")].toString());
        return paths;
    }
    QString storedStart() const
    {
        return settings().value(QStringLiteral("startInFlight"))[QStringLiteral("path")].toString();
    }

    void create()
    {
        m_defaults = std::make_unique<Defaults>(settingsPath());
        m_app = std::make_unique<AppDelegate>(*m_defaults);
        AppDelegate *app = m_app.get();
        QObject::connect(app, &AppDelegate::failureReported, app, [this](const QString &title, const QString &detail) {
            m_failures.append({title, detail});
        });
        QObject::connect(app, &AppDelegate::startFinished, app, [this](const QString &path, bool taken) {
            (taken ? m_taken : m_refused).append(path);
        });
        QObject::connect(app, &AppDelegate::refreshed, app, [this] { ++m_refreshes; });
        QObject::connect(app, &AppDelegate::rowsChanged, app, [this] { ++m_rowChanges; });
        QObject::connect(app, &AppDelegate::polled, app, [this] { ++m_polled; });
        QObject::connect(app, &AppDelegate::summaryChanged, app, [this](const QString &text) { m_summaries.append(text); });
    }
    void launch()
    {
        create();
        m_app->applicationDidFinishLaunching(AppDelegate::Face::Terminal);
    }
    /// The controller with its stored queue, but without its timer.
    void prepare()
    {
        create();
        m_app->restoreWaiting();
    }
    void destroy()
    {
        m_app.reset();
        m_defaults.reset();
    }

    const JobsState &jobs() const { return m_app->jobs(); }
    bool pollEnds()
    {
        return waitFor([this] { return !jobs().polling; });
    }
    void poll()
    {
        ASSERT_TRUE(pollEnds());
        m_app->poll();
        ASSERT_TRUE(pollEnds());
    }
    /// Ends when a call made after all earlier ones has been answered.
    void settle()
    {
        bool answered = false;
        RunCallTimeout({QStringLiteral("settle")}, m_app.get(), [&](const EngineReply &) { answered = true; }, 0);
        ASSERT_TRUE(waitFor([&] { return answered; }));
    }
    bool processCalls(int count)
    {
        return waitFor([&] { return m_engine.count(QStringLiteral("process")) == count; });
    }
    QStringList processed() const
    {
        QStringList paths;
        for (const QStringList &call : m_engine.calls(QStringLiteral("process")))
            paths.append(call.value(1));
        return paths;
    }
    QStringList waitingPaths() const
    {
        QStringList paths;
        for (const WaitingEntry &entry : jobs().waiting)
            paths.append(WaitingPath(entry));
        return paths;
    }
    QStringList rowKeys() const
    {
        QStringList keys;
        const Rows &rows = m_app->list().snapshot.rows;
        for (qsizetype index = 0; index < rows.size(); ++index)
            keys.append(rows.keyAt(index));
        return keys;
    }

    ScriptedEngine m_engine;
    std::unique_ptr<Defaults> m_defaults;
    std::unique_ptr<AppDelegate> m_app;
    QList<Failure> m_failures;
    QStringList m_taken;
    QStringList m_refused;
    QStringList m_summaries;
    int m_refreshes = 0;
    int m_rowChanges = 0;
    int m_polled = 0;
    const StartChoices m_choices{QStringLiteral("whisper"), QStringLiteral("uk"), false, true};
};

} // namespace tuppi::test

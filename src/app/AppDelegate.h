#pragma once

#include "app/JobsState.h"
#include "app/QueueStore.h"
#include "intake/SetupState.h"
#include "list/ListState.h"
#include "list/NoticeState.h"
#include "list/SoundState.h"
#include "platform/PlatformState.h"
#include "settings/ModelsState.h"
#include "settings/SettingsState.h"
#include "ui/UiState.h"
#include "viewer/ViewerState.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <functional>

namespace tuppi {

class ViewerWindow;
struct ResultPlan;
class SaveTextDialog;
enum class ShareChoice;
struct DoomedFolder;
struct SharedFile;
struct TrashResult;

/// The one controller. It owns all state and lives until the process ends; its methods gather, ask a rule,
/// and apply what the rule says. Main thread only.
class AppDelegate : public QObject
{
    Q_OBJECT
public:
    enum class Face { Window, Terminal };

    /// `defaults` is the user's store and outlives the controller.
    explicit AppDelegate(Defaults &defaults, QObject *parent = nullptr);
    ~AppDelegate() override;

    /// Asked for before the launch: `installer` sets the engine up before the first command to it.
    void setEngineInstaller(const QString &installer) { m_jobs.engineInstaller = installer; }
    void applicationDidFinishLaunching(Face face);
    /// Shows the window and brings it forward; `token` is the desktop's leave to do so, or empty.
    void applicationShouldHandleReopen(const QString &token);

    const JobsState &jobs() const { return m_jobs; }
    const ListState &list() const { return m_list; }
    const ModelsState &models() const { return m_models; }
    /// False where the files wait in memory only, another process having the stored queue or the disk being at fault.
    bool keepsQueue() const { return m_queue.isKept(); }

    // Main loop
    void startWork();
    void askEngine();
    void tick();
    void poll();
    /// The same after a command of ours: a poll already on its way may have read the state before the change.
    void pollAnew();
    void watchEngineState();

    // Waiting queue and scheduler
    void enqueue(const QStringList &paths, const StartChoices &choices);
    void saveWaiting();
    void restoreWaiting();
    /// Takes the stored queue over from a process that has ended, in front of this one's own.
    void takeOverWaiting();
    void removeWaiting(const QString &rowKey);
    void startNextIfIdle();
    bool busyExcept(const QString &id) const;

    // Main window
    void buildWindow();
    /// Runs the command of that name; a name without a command does nothing.
    void perform(const QString &action);
    void performOnRow(const QString &rowKey, const QString &action);

    // Adding files
    /// Files that the desktop asks to open; what is no recording is left out.
    void openUrls(const QList<QUrl> &urls);
    /// The same while the application runs: the window comes forward for a recording only; `token` as above.
    void openRequested(const QList<QUrl> &urls, const QString &token);
    /// The one door for files: gathers them in the New Transcription panel.
    void addFiles(const QList<QUrl> &files);
    void chooseFiles();
    void openSetup();
    void updateSetupList();
    void startSetup(const StartChoices &choices);
    void cancelSetup();
    void closeSetup();

    // Row commands; a row that is gone by then makes them do nothing
    void openRowViewer(const QString &rowKey);
    void openRowText(const QString &rowKey);
    void copyRowText(const QString &rowKey);
    void showRowInFinder(const QString &rowKey);
    void renameRow(const QString &rowKey);
    void pauseRow(const QString &rowKey);
    void resumeRow(const QString &rowKey);
    void retryRow(const QString &rowKey);
    void cancelRow(const QString &rowKey);
    void removeRow(const QString &rowKey);
    /// Offers to hide these rows or to put their folders into the Trash.
    void removeCalls(const JobList &rows, const QString &title);
    void clearList();
    void showHidden();
    void openLibrary();
    /// Opens what exists there with the desktop's program for it.
    void openPath(const QString &path);

    // Viewer
    /// Opens the row's transcript or brings its window forward; `text` asks for the summary.
    void showResult(const QJsonObject &row, bool text);
    void closeResultWindowsForDir(const QString &callDir);
    const ViewerState &viewer() const { return m_viewer; }

    // Export
    /// Asks where and in which form to save; over `window`, or over the main window without one.
    void saveTextForDir(const QString &callDir, QWidget *window);
    /// Offers the transcript as a text file to other programs, in a menu at `anchor`.
    void shareTextForDir(const QString &callDir, QWidget *anchor);
    void saveRowText(const QString &rowKey);
    void shareRowText(const QString &rowKey);
    /// Saves what is in front: the transcript of a result window, else the selected one.
    void saveFrontText();

    // List
    void refresh();
    /// The row shown under that key, empty when there is none.
    QJsonObject rowWithKey(const QString &key) const;
    void flash(const QString &text);
    void reportFailure(int status, const QString &err, const QString &title);

    // Sounds and notices
    bool soundsOn() const;
    void refreshSoundUI();
    void toggleSounds();
    void meow();
    /// Starts the purr, or lets it fade, as the engine's work and the setting want it.
    void updatePurr();
    /// Tells the person of every job that has ended since the last history.
    void notifyTransitions(const HistoryPointer &history);
    void notify(const QString &title, const QString &body, const QString &callId);

    // Models
    void refreshCustomModels();
    void rebuildModelsUI();
    void addCustomModel();
    /// Of the engine's list.
    void removeCustomModel(int index);
    void useTextModel(const QString &name);
    void pullTextModel(const QString &typed);

    // Settings
    void showSettings();
    void settingToggleChanged(const QString &key, bool on);
    void settingPopupChanged(const QString &key, const QString &value);
    void interfaceLanguageChanged(const QString &code);
    void refreshLibrary();
    void changeLibrary();
    void refreshHealth();
    void openInstallLog();
    void showAbout();
    void showAcknowledgements();

Q_SIGNALS:
    /// After every refresh, whether or not the rows changed.
    void refreshed();
    /// The rows differ from those shown before.
    void rowsChanged();
    void summaryChanged(const QString &summary);
    /// The summary is a message that goes by itself.
    void flashed(const QString &text);
    /// A poll ended whose history is usable and no older than the last start.
    void polled();
    /// The engine has answered a start; the file is no longer in flight.
    void startFinished(const QString &path, bool taken);
    void failureReported(const QString &title, const QString &detail);

private:
    /// What a poll carries from its start to its end.
    struct PollContext
    {
        unsigned number = 0;  ///< of the poll
        int generation = 0;
        bool interruptedStartEnded = false;
    };

    void tellSettingsSetAside();
    void historyArrived(const HistoryReply &reply, PollContext context);
    void statusArrived(const std::optional<QJsonObject> &status, const HistoryPointer &history, PollContext context);
    void settleInterruptedStart(bool commandEnded);
    void startAnswered(const EngineReply &reply);
    void runOnJob(const QStringList &arguments, const QString &title, std::function<void()> succeeded = {});
    void confirmTrash(const JobList &rows);
    void saveText(const QString &callDir, const SaveTextDialog &dialog, QWidget *window);
    void whenTextIsWhole(const QString &callDir, QWidget *window, const std::function<void()> &then);
    void tellNotSaved(const QString &reason, QWidget *window);
    void shareText(const QString &callDir, QWidget *anchor);
    void share(ShareChoice choice, const SharedFile &file);
    void trashFolders(const JobList &rows);
    void trashEnded(const QList<DoomedFolder> &folders, const QList<TrashResult> &results, QStringList lines);
    void resetEngineThatIsGone();
    void buildSettings();
    void connectModelsPane();
    QWidget *settingsSheetWindow() const;
    FolderSize &folderSize();
    void useLibrary(const QString &folder);
    void modelsBusy(const QString &text);
    void modelsError(const QString &title, const QString &err);
    void downloadModel(const QString &name, const QString &kind, const QString &repo);
    void forgetModel(const QJsonObject &record);
    /// Shows a page of the web in the person's browser.
    void openPage(const QUrl &page);
    void followDesktop();
    void keepAwake();
    MediaLengths &mediaLengths();
    SoundPlayer &soundPlayer();
    void soundStarted(const QString &name, bool loaded, bool plays);
    void soundLost(const QString &name);
    void fadePurr();
    void noticeClicked(const QString &identifier, const QString &token);
    QString jobIdOf(const QString &rowKey) const;
    void showRows();
    void showEmptyState();
    void restoreFrame(QWidget *window, const QString &key);
    void rememberFrame(const QWidget *window, const QString &key);
    bool showOpenResult(const ResultPlan &plan);
    void openTextWindow(const ResultPlan &plan);
    void openViewerWindow(const ResultPlan &plan, bool withoutSandbox);
    void offerTextInstead(const ResultPlan &plan, bool forLackOfSandbox);
    void showResultAsText(const ResultPlan &plan);
    void addResultWindow(ResultWindow *window);
    void tellLost(const QString &title, const QString &reason, const QStringList &written);
    void viewerMessage(ViewerWindow *window, const QJsonObject &body, int page);

    JobsState m_jobs;
    ListState m_list;
    ModelsState m_models;
    QueueStore m_queue;
    SetupState m_setup;
    UiState m_ui;
    SettingsState m_settings;
    PlatformState m_platform;
    ViewerState m_viewer;
    SoundState m_sounds;
    NoticeState m_notices;
    QTimer m_timer;
    QTimer m_watchDelay;
    QFileSystemWatcher m_stateWatch;
};

} // namespace tuppi

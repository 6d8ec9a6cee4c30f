#include "app/AppDelegate.h"
#include "engine/EngineInstaller.h"
#include "platform/ApplicationId.h"
#include "platform/Relaunch.h"
#include "platform/SingleInstance.h"
#include "settings/Defaults.h"
#include "settings/L.h"
#include "settings/LibraryTexts.h"
#include "terminal/Interrupts.h"
#include "terminal/Options.h"
#include "terminal/TerminalView.h"
#include "ui/Appearance.h"
#include "ui/Fonts.h"

#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLocale>
#include <QTextStream>
#include <QTranslator>

#include <csignal>
#include <malloc.h>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

constexpr int usageError = 2;

/// Memory that was needed for a moment goes back to the system: threads share what is free among them, and whatever
/// is large is mapped by itself, however often it was needed before.
void keepMemoryLow()
{
    constexpr int large = 128 * 1024;
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MMAP_THRESHOLD, large);
    mallopt(M_TRIM_THRESHOLD, large);
}

void nameApplication()
{
    QCoreApplication::setApplicationName(u"tuppi-transcriber"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(TUPPI_VERSION));
}

/// The texts of the interface: the program's own and Qt's, for the standard buttons and the file dialog.
struct InterfaceTexts
{
    LocalTable own;
    QTranslator qt;
};

/// Installs the texts of the interface language and makes its way of writing the program's.
void installLanguage(InterfaceTexts &texts, const Defaults &defaults)
{
    const QString chosen = ChosenInterfaceLanguage(defaults.value(u"AppleLanguages"_s));
    const QLocale system = QLocale::system();
    const QString language = LoadInterfaceTexts(texts.own, InterfaceLanguageInUse(chosen, system.uiLanguages()));
    const QLocale locale = InterfaceLocale(language, system);
    QLocale::setDefault(locale);
    if (texts.own.isEmpty())
        return; // English stands in the code, ours and Qt's
    QCoreApplication::installTranslator(&texts.own);
    if (texts.qt.load(locale, u"qtbase"_s, u"_"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&texts.qt);
}

/// The program without a window, its messages in the interface language.
struct TerminalProgram
{
    TerminalProgram(int &argc, char *argv[])
        : application(argc, argv)
        , defaults(Defaults::userPath())
    {
        installLanguage(texts, defaults);
    }

    QCoreApplication application;
    Defaults defaults;
    InterfaceTexts texts;
};

StartChoices choicesFor(const Options &options, const Defaults &defaults)
{
    StartChoices choices;
    choices.engine = options.model.value_or(defaults.text(u"engine"_s));
    choices.language = options.language.value_or(defaults.text(u"language"_s));
    choices.speakers = options.speakers && defaults.isOn(u"speakers"_s);
    choices.quick = options.textOnly || defaults.isOn(u"quickMode"_s);
    return choices;
}

int transcribe(Defaults &defaults, const Options &options)
{
    Interrupts interrupts;
    AppDelegate delegate(defaults);
    TerminalView view;
    QObject::connect(&delegate, &AppDelegate::refreshed, &view, [&] {
        view.showState(delegate.jobs(), delegate.models().custom);
        if (delegate.jobs().engineBroken)
            view.showEngineMissing(delegate.jobs(), delegate.keepsQueue());
    });
    QObject::connect(&delegate, &AppDelegate::polled, &view, [&] { view.showPolled(delegate.jobs()); });
    QObject::connect(&delegate, &AppDelegate::startFinished, &view, &TerminalView::showStartFinished);
    QObject::connect(&delegate, &AppDelegate::failureReported, &view, &TerminalView::showFailure);
    QObject::connect(&delegate, &AppDelegate::flashed, &view, &TerminalView::showPassing);
    QObject::connect(&view, &TerminalView::finished, &view, [](int status) { QCoreApplication::exit(status); },
                     Qt::QueuedConnection);
    QObject::connect(&interrupts, &Interrupts::interrupted, &view, [&] {
        view.showInterrupted(delegate.jobs(), delegate.keepsQueue());
        QCoreApplication::exit(1);
    });

    delegate.setEngineInstaller(EngineInstallerFor(QCoreApplication::applicationDirPath()));
    delegate.applicationDidFinishLaunching(AppDelegate::Face::Terminal);
    if (!defaults.setAside().isEmpty()) {
        view.showNotice(L(u"Your settings could not be read"_s) + u": "_s
                        + SettingsSetAsideDetail(defaults.setAside(), QDir::homePath()));
    }
    delegate.enqueue(options.files, choicesFor(options, defaults));
    return QCoreApplication::exec();
}

QList<QUrl> urlsOf(const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    return urls;
}

int openWindow(Defaults &defaults, const Options &options, SingleInstance &instance)
{
    AppDelegate delegate(defaults);
    QObject::connect(&instance, &SingleInstance::activated, &delegate, &AppDelegate::applicationShouldHandleReopen);
    QObject::connect(&instance, &SingleInstance::openRequested, &delegate, &AppDelegate::openRequested);
    delegate.setEngineInstaller(EngineInstallerFor(QCoreApplication::applicationDirPath()));
    delegate.applicationDidFinishLaunching(AppDelegate::Face::Window);
    delegate.openUrls(urlsOf(options.files));
    const int status = QCoreApplication::exec();
    if (delegate.viewer().relaunches) // only here: a quit may wait, or be called off
        RelaunchAfterQuit(QCoreApplication::applicationFilePath());
    return status;
}

/// Says what there is to say about the arguments: in the interface language, now that it is known.
void sayAbout(int argc, char *argv[], const QStringList &arguments, FILE *channel)
{
    const TerminalProgram program(argc, argv);
    const QString message = ParseOptions(arguments).message;
    QTextStream(channel) << message << (message.endsWith(u'\n') ? "" : "\n");
}

int runTerminal(int argc, char *argv[], const Options &options)
{
    TerminalProgram program(argc, argv);
    return transcribe(program.defaults, options);
}

int runWindow(int argc, char *argv[], const Options &options)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        const TerminalProgram program(argc, argv);
        QTextStream(stderr) << L(u"There is no display to open a window on; --transcribe works without one."_s) << '\n';
        return 1;
    }
    // Read before the application object takes it out of the environment.
    const QVariantMap tokens = LaunchTokens();
    FontsAhead fonts;
    QApplication application(argc, argv);
    fonts.applicationIsUp();
    QGuiApplication::setDesktopFileName(applicationId);
    SingleInstance instance(QDBusConnection::sessionBus());
    const SingleInstance::Role role = instance.start(urlsOf(options.files), tokens);
    if (role == SingleInstance::Role::HandedOver) {
        fonts.wait(); // they are looked for through the application, which ends here
        return 0;
    }
    // Without its window the application goes on, to be brought back by the next start; without the bus
    // nothing could bring it back.
    application.setQuitOnLastWindowClosed(role == SingleInstance::Role::Alone);
    Defaults defaults(Defaults::userPath());
    InterfaceTexts texts;
    installLanguage(texts, defaults);
    QGuiApplication::setLayoutDirection(QLocale().textDirection());
    applyAppearance(application);
    fonts.wait();
    return openWindow(defaults, options, instance);
}

} // namespace

int main(int argc, char *argv[])
{
    keepMemoryLow();
    std::signal(SIGCHLD, SIG_DFL); // where whoever started us ignores it, how a command ended is not to be had
    nameApplication();
    QStringList arguments;
    for (int index = 1; index < argc; ++index)
        arguments.append(QString::fromLocal8Bit(argv[index]));
    const Options options = ParseOptions(arguments);
    switch (options.mode) {
    case Options::Mode::Help:
        sayAbout(argc, argv, arguments, stdout);
        return 0;
    case Options::Mode::Version:
        QTextStream(stdout) << "Tuppi Transcriber " << QCoreApplication::applicationVersion() << '\n';
        return 0;
    case Options::Mode::UsageError:
        sayAbout(argc, argv, arguments, stderr);
        return usageError;
    case Options::Mode::Transcribe:
        return runTerminal(argc, argv, options);
    case Options::Mode::Window:
        return runWindow(argc, argv, options);
    }
    return usageError;
}

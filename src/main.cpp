#include "app/AppDelegate.h"
#include "settings/Defaults.h"
#include "settings/L.h"
#include "terminal/Interrupts.h"
#include "terminal/Options.h"
#include "terminal/TerminalView.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTextStream>

using namespace tuppi;
using namespace Qt::StringLiterals;

namespace {

constexpr int usageError = 2;

void installLanguage(LocalTable &table, const Defaults &defaults)
{
    const QString chosen = ChosenInterfaceLanguage(defaults.value(u"AppleLanguages"_s));
    const QString language = InterfaceLanguageInUse(chosen, QLocale().uiLanguages());
    if (table.loadTable(u":/localization/%1.json"_s.arg(language)))
        QCoreApplication::installTranslator(&table);
}

StartChoices choicesFor(const Options &options, const Defaults &defaults)
{
    StartChoices choices;
    choices.engine = options.model.value_or(defaults.text(u"engine"_s));
    choices.language = options.language.value_or(defaults.text(u"language"_s));
    choices.speakers = options.speakers && defaults.isOn(u"speakers"_s);
    choices.quick = options.textOnly || defaults.isOn(u"quickMode"_s);
    return choices;
}

int transcribe(QCoreApplication &application, Defaults &defaults, const Options &options)
{
    Interrupts interrupts;
    AppDelegate delegate(defaults);
    TerminalView view;
    QObject::connect(&delegate, &AppDelegate::refreshed, &view,
                     [&] { view.showState(delegate.jobs(), delegate.models().custom); });
    QObject::connect(&delegate, &AppDelegate::polled, &view, [&] { view.showPolled(delegate.jobs()); });
    QObject::connect(&delegate, &AppDelegate::startFinished, &view, &TerminalView::showStartFinished);
    QObject::connect(&delegate, &AppDelegate::failureReported, &view, &TerminalView::showFailure);
    QObject::connect(&view, &TerminalView::finished, &application, [](int status) { QCoreApplication::exit(status); },
                     Qt::QueuedConnection);
    QObject::connect(&interrupts, &Interrupts::interrupted, &view, [&] {
        view.showInterrupted(delegate.jobs(), delegate.ownsStoredQueue());
        QCoreApplication::exit(1);
    });

    delegate.applicationDidFinishLaunching();
    if (!delegate.ownsStoredQueue())
        view.showNotice(L(u"Another Tuppi Transcriber keeps the waiting list; the files of this one wait here only."_s));
    delegate.enqueue(options.files, choicesFor(options, defaults));
    return application.exec();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(u"tuppi-transcriber"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(TUPPI_VERSION));
    Defaults defaults(Defaults::userPath());
    LocalTable table;
    installLanguage(table, defaults);

    const Options options = ParseOptions(QCoreApplication::arguments().sliced(1));
    switch (options.mode) {
    case Options::Mode::Help:
        QTextStream(stdout) << options.message;
        return 0;
    case Options::Mode::Version:
        QTextStream(stdout) << "Tuppi Transcriber " << QCoreApplication::applicationVersion() << '\n';
        return 0;
    case Options::Mode::UsageError:
        QTextStream(stderr) << options.message << '\n';
        return usageError;
    case Options::Mode::Window:
    case Options::Mode::Transcribe:
        return transcribe(application, defaults, options);
    }
    return usageError;
}

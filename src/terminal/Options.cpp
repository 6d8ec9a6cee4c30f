#include "terminal/Options.h"

#include "intake/AcceptedFiles.h"
#include "settings/Fill.h"
#include "settings/L.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// What is wrong with a file named on the command line, empty when nothing is.
QString fileFault(const QString &name)
{
    const QFileInfo file(name);
    if (!file.exists())
        return Fill(L(u"There is no file “%@”."_s), {name});
    if (!file.isFile())
        return Fill(L(u"“%@” is not a file."_s), {name});
    if (!IsAcceptedFile(name))
        return Fill(L(u"“%@” is not a recording of a kind that Tuppi knows (%@)."_s),
                    {name, AcceptedExtensions().join(u", "_s)});
    return {};
}

void readFiles(const QStringList &names, Options &options)
{
    for (const QString &name : names) {
        const QString fault = fileFault(name);
        if (fault.isEmpty()) {
            options.files.append(QFileInfo(name).absoluteFilePath());
        } else if (options.mode == Options::Mode::Transcribe) {
            options.mode = Options::Mode::UsageError;
            options.message = fault;
            return;
        }
    }
}

} // namespace

Options ParseOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        L(u"Turns recordings into written transcripts on this computer. Nothing leaves it."_s));
    const QCommandLineOption help({u"h"_s, u"help"_s}, L(u"Show this help."_s));
    const QCommandLineOption version({u"v"_s, u"version"_s}, L(u"Show the version."_s));
    const QCommandLineOption transcribe(
        u"transcribe"_s, L(u"Transcribe without a window; without FILE, go on with what was waiting."_s));
    const QCommandLineOption model(u"model"_s, L(u"The speech model."_s), u"ID"_s);
    const QCommandLineOption language(u"language"_s, L(u"The language spoken, or auto."_s), u"CODE"_s);
    const QCommandLineOption noSpeakers(u"no-speakers"_s, L(u"Do not tell speakers apart."_s));
    const QCommandLineOption textOnly(u"text-only"_s, L(u"Skip the summary, the tasks and the polishing."_s));
    parser.addOptions({help, version, transcribe, model, language, noSpeakers, textOnly});
    parser.addPositionalArgument(u"FILE"_s, L(u"Recordings."_s), u"[FILE…]"_s);

    Options options;
    const bool understood = parser.parse(QStringList(u"tuppi-transcriber"_s) + arguments);
    if (!understood) {
        options.mode = Options::Mode::UsageError;
        options.message = parser.errorText();
        return options;
    }
    if (parser.isSet(help)) {
        options.mode = Options::Mode::Help;
        options.message = parser.helpText();
        return options;
    }
    if (parser.isSet(version)) {
        options.mode = Options::Mode::Version;
        return options;
    }
    options.mode = parser.isSet(transcribe) ? Options::Mode::Transcribe : Options::Mode::Window;
    for (const QCommandLineOption &choice : {model, language, noSpeakers, textOnly}) {
        if (options.mode == Options::Mode::Window && parser.isSet(choice)) {
            options.mode = Options::Mode::UsageError;
            options.message = Fill(L(u"The option “%@” goes with --transcribe."_s), {u"--"_s + choice.names().first()});
            return options;
        }
    }
    if (parser.isSet(model))
        options.model = parser.value(model);
    if (parser.isSet(language))
        options.language = parser.value(language);
    options.speakers = !parser.isSet(noSpeakers);
    options.textOnly = parser.isSet(textOnly);
    readFiles(parser.positionalArguments(), options);
    return options;
}

} // namespace tuppi

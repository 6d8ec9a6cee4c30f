#include "actions/Menus.h"

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

const MenuItem separator{};

Menu applicationMenu()
{
    return {u"Tuppi Transcriber"_s,
            {{u"About Tuppi Transcriber"_s, u"showAbout"_s, {}},
             {u"Acknowledgements…"_s, u"showAcknowledgements"_s, {}},
             separator,
             {u"Settings…"_s, u"showSettings"_s, u","_s},
             separator,
             {u"Hide Tuppi Transcriber"_s, u"hide"_s, u"h"_s, true},
             {u"Quit Tuppi Transcriber"_s, u"terminate"_s, u"q"_s, true}}};
}

Menu fileMenu()
{
    return {u"File"_s,
            {{u"Add Audio File…"_s, u"chooseFiles"_s, u"o"_s},
             {u"Show All Transcripts in Finder"_s, u"openLibrary"_s, u"l"_s},
             {u"Save Transcript as Text…"_s, u"saveFrontText"_s, u"s"_s},
             separator,
             {u"Clear List…"_s, u"clearList"_s, {}},
             {u"Show Hidden Transcripts"_s, u"showHidden"_s, {}},
             separator,
             {u"Close Window"_s, u"performClose"_s, u"w"_s, true}}};
}

Menu editMenu()
{
    return {u"Edit"_s,
            {{u"Undo"_s, u"undo"_s, u"z"_s, true},
             {u"Redo"_s, u"redo"_s, u"Z"_s, true},
             separator,
             {u"Cut"_s, u"cut"_s, u"x"_s, true},
             {u"Copy"_s, u"copy"_s, u"c"_s, true},
             {u"Paste"_s, u"paste"_s, u"v"_s, true},
             {u"Delete"_s, u"delete"_s, {}, true},
             {u"Select All"_s, u"selectAll"_s, u"a"_s, true}}};
}

} // namespace

QList<Menu> MainMenu()
{
    return {applicationMenu(), fileMenu(), editMenu(),
            {u"Window"_s, {{u"Minimize"_s, u"performMiniaturize"_s, u"m"_s, true}}}};
}

QList<MenuItem> RowMenu()
{
    return {{u"Open Transcript"_s, u"openRowViewer"_s, {}},
            {u"Open Summary and Text"_s, u"openRowText"_s, {}},
            {u"Copy Text"_s, u"copyRowText"_s, {}},
            {u"Show in Finder"_s, u"showRowInFinder"_s, {}},
            {u"Save as Text…"_s, u"saveRowText"_s, {}},
            {u"Share…"_s, u"shareRowText"_s, {}},
            {u"Rename…"_s, u"renameRow"_s, {}},
            {u"Try Again"_s, u"retryRow"_s, {}},
            {u"Pause"_s, u"pauseRow"_s, {}},
            {u"Resume"_s, u"resumeRow"_s, {}},
            {u"Cancel Transcription…"_s, u"cancelRow"_s, {}},
            {u"Remove…"_s, u"removeRow"_s, {}}};
}

QString KeySequenceOf(const MenuItem &item)
{
    if (item.key.isEmpty())
        return {};
    const bool shift = item.key.at(0).isUpper();
    return (shift ? u"Ctrl+Shift+"_s : u"Ctrl+"_s) + item.key.toUpper();
}

} // namespace tuppi

#include "actions/Menus.h"

#include "settings/L.h"

namespace tuppi {

using namespace Qt::StringLiterals;

namespace {

const MenuItem separator{};

Menu applicationMenu()
{
    return {LText(u"Tuppi Transcriber"_s),
            {{LText(u"About Tuppi Transcriber"_s), u"showAbout"_s, {}},
             {LText(u"Acknowledgements…"_s), u"showAcknowledgements"_s, {}},
             separator,
             {LText(u"Settings…"_s), u"showSettings"_s, u","_s},
             separator,
             {LText(u"Hide Tuppi Transcriber"_s), u"hide"_s, u"h"_s, true},
             {LText(u"Quit Tuppi Transcriber"_s), u"terminate"_s, u"q"_s, true}}};
}

Menu fileMenu()
{
    return {LText(u"File"_s),
            {{LText(u"Add Audio File…"_s), u"chooseFiles"_s, u"o"_s},
             {LText(u"Show All Transcripts in Finder"_s), u"openLibrary"_s, u"l"_s},
             {LText(u"Save Transcript as Text…"_s), u"saveFrontText"_s, u"s"_s},
             separator,
             {LText(u"Clear List…"_s), u"clearList"_s, {}},
             {LText(u"Show Hidden Transcripts"_s), u"showHidden"_s, {}},
             separator,
             {LText(u"Close Window"_s), u"performClose"_s, u"w"_s, true}}};
}

Menu editMenu()
{
    return {LText(u"Edit"_s),
            {{LText(u"Undo"_s), u"undo"_s, u"z"_s, true},
             {LText(u"Redo"_s), u"redo"_s, u"Z"_s, true},
             separator,
             {LText(u"Cut"_s), u"cut"_s, u"x"_s, true},
             {LText(u"Copy"_s), u"copy"_s, u"c"_s, true},
             {LText(u"Paste"_s), u"paste"_s, u"v"_s, true},
             {LText(u"Delete"_s), u"delete"_s, {}, true},
             {LText(u"Select All"_s), u"selectAll"_s, u"a"_s, true}}};
}

} // namespace

QList<Menu> MainMenu()
{
    return {applicationMenu(), fileMenu(), editMenu(),
            {LText(u"Window"_s), {{LText(u"Minimize"_s), u"performMiniaturize"_s, u"m"_s, true}}, true}};
}

QList<MenuItem> RowMenu()
{
    return {{LText(u"Open Transcript"_s), u"openRowViewer"_s, {}},
            {LText(u"Open Summary and Text"_s), u"openRowText"_s, {}},
            {LText(u"Copy Text"_s), u"copyRowText"_s, {}},
            {LText(u"Show in Finder"_s), u"showRowInFinder"_s, {}},
            {LText(u"Save as Text…"_s), u"saveRowText"_s, {}},
            {LText(u"Share…"_s), u"shareRowText"_s, {}},
            {LText(u"Rename…"_s), u"renameRow"_s, {}},
            {LText(u"Try Again"_s), u"retryRow"_s, {}},
            {LText(u"Pause"_s), u"pauseRow"_s, {}},
            {LText(u"Resume"_s), u"resumeRow"_s, {}},
            {LText(u"Cancel Transcription…"_s), u"cancelRow"_s, {}},
            {LText(u"Remove…"_s), u"removeRow"_s, {}}};
}

QString KeySequenceOf(const MenuItem &item)
{
    if (item.key.isEmpty())
        return {};
    const bool shift = item.key.at(0).isUpper();
    return (shift ? u"Ctrl+Shift+"_s : u"Ctrl+"_s) + item.key.toUpper();
}

} // namespace tuppi

#include "terminal/FittedLine.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <wchar.h>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

/// What a terminal takes for it: Chinese two columns a character, an accent that stands above another none.
int columnsOf(QStringView text)
{
    int columns = 0;
    for (const uint character : text.toUcs4()) {
        const int own = ::wcwidth(wchar_t(character));
        columns += own < 0 ? 1 : own; // one that the locale does not know
    }
    return columns;
}

/// No character is cut in two, nor parted from its accents.
QString firstColumns(const QString &text, int columns)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    for (qsizetype next = finder.toNextBoundary(); next > 0; next = finder.toNextBoundary()) {
        columns -= columnsOf(QStringView(text).sliced(end, next - end));
        if (columns < 0)
            break;
        end = next;
    }
    return text.first(end);
}

} // namespace

QString FittedLine(const QString &title, const QString &text, int columns)
{
    constexpr int least = 8; // of the title
    const QString rest = u": "_s + text;
    const int room = std::max(least, columns - columnsOf(rest));
    return (columnsOf(title) > room ? firstColumns(title, room - 1) + u'…' : title) + rest;
}

} // namespace tuppi

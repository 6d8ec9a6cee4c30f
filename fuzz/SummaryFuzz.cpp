#include "Fuzz.h"

#include "export/TranscriptText.h"

#include <QString>

using namespace Qt::StringLiterals;
using namespace tuppi;

/// The text of a summary file, and a title that becomes a file name.
void readInput(const QByteArray &bytes)
{
    const QString text = QString::fromUtf8(bytes);
    const QString rest = WithoutFrontMatter(text);
    require(text.endsWith(rest));
    require(rest.size() == text.size() || text.startsWith("---\n"_L1));
    const QString name = SafeFileName(text);
    require(name.endsWith(".txt"_L1) && !name.contains(u'/'));
}

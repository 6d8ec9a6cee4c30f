#include "text/Segment.h"

namespace engine {

QStringList textsOf(const std::vector<Word> &words)
{
    QStringList texts;
    for (const Word &word : words)
        texts.append(word.text);
    return texts;
}

QString Segment::text() const
{
    QString text;
    if (!words)
        return text;
    for (const Word &word : *words) {
        if (!text.isEmpty())
            text += u' ';
        text += word.text;
    }
    return text;
}

} // namespace engine

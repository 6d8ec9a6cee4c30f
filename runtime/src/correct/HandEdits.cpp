#include "correct/HandEdits.h"

#include "core/Failure.h"
#include "core/Files.h"
#include "intake/CallDir.h"
#include "output/Formats.h"

#include <QStringDecoder>
#include <QStringEncoder>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

const QString cleanName = CallDirNames::technical + u"/transcript.txt"_s;

// Empty where there is no such file. Throws Failure where there is one that cannot be taken whole: it would be
// written over as if nobody had changed it.
QString textOf(const QString &callDir, const QString &name)
{
    const std::optional<QByteArray> bytes =
        readFile(callDir + u'/' + name, u"“"_s + name + u"” could not be read"_s);
    if (!bytes)
        return {};
    // A byte order mark, which some editors put in front, is kept. With one, UTF-16 is a text like any other.
    const auto encoding = QStringDecoder::encodingForData(*bytes).value_or(QStringDecoder::Utf8);
    QStringDecoder decoder(encoding, QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QString text = decoder(*bytes);
    // Not every byte that is lost counts as an error of the decoder.
    if (QByteArray(QStringEncoder(encoding)(text)) != *bytes)
        throw Failure(u"“"_s + name + u"” is not written in UTF-8. Save it in UTF-8, or remove it."_s);
    return text;
}

// What editors add to a text that is otherwise the same: a byte order mark in front, and "\r" before the end of
// every row.
class EditorsMarks
{
public:
    explicit EditorsMarks(const QString &text)
        : m_inFront(text.startsWith(QChar::ByteOrderMark))
        , m_atEnds(text.contains(rowEnd))
    {
    }

    QString without(QString text) const
    {
        text.replace(rowEnd, u"\n"_s);
        return m_inFront ? text.sliced(1) : text;
    }

    QString with(QString text) const
    {
        if (m_atEnds)
            text.replace(rowEnd, u"\n"_s).replace(u"\n"_s, rowEnd);
        return m_inFront ? QChar(QChar::ByteOrderMark) + text : text;
    }

private:
    static inline const QString rowEnd = u"\r\n"_s;
    bool m_inFront;
    bool m_atEnds;
};

// Where `ours` became `after`, the same rows of `theirs` become the same.
QString withSameRows(const QString &theirs, const QString &ours, const QString &after)
{
    const QStringList from = ours.split(u'\n');
    const QStringList to = after.split(u'\n');
    if (from.size() == to.size()) {
        QStringList rows = theirs.split(u'\n');
        for (qsizetype i = 0; i < from.size(); ++i) {
            if (from[i] == to[i])
                continue;
            if (const qsizetype at = rows.indexOf(from[i]); at >= 0)
                rows[at] = to[i];
        }
        return rows.join(u'\n');
    }
    const auto [fromFront, toFront] = std::ranges::mismatch(from, to);
    const auto fromBack = std::mismatch(from.rbegin(), std::reverse_iterator(fromFront), to.rbegin(),
                                        std::reverse_iterator(toFront));
    const QStringList old(fromFront, fromBack.first.base());
    const QStringList now(toFront, fromBack.second.base());
    const QString oldBlock = u'\n' + old.join(u'\n') + u'\n';
    QString padded = u'\n' + theirs;
    if (const qsizetype at = padded.indexOf(oldBlock); at >= 0 && !old.isEmpty())
        padded.replace(at, oldBlock.size(), u'\n' + now.join(u'\n') + u'\n');
    return padded.sliced(1);
}

} // namespace

HandEdits::HandEdits(const Job &job, const Transcript &transcript)
    : m_callDir(job.callDir)
    , m_clean(transcript.clean)
    , m_written{{CallDirNames::transcript, transcriptFile(transcript.lines)}}
{
    if (transcript.summary)
        m_written.emplace_back(CallDirNames::summary, summaryFile(job, transcript));
}

QString HandEdits::cleanText() const
{
    const QString text = textOf(m_callDir, cleanName);
    return text.isEmpty() ? m_clean : text;
}

void HandEdits::keepIn(CallDirFiles &files, const std::function<QString(const QString &)> &carriedOver) const
{
    for (const auto &[name, written] : m_written) {
        const auto file = std::ranges::find(files, name, &CallDirFiles::value_type::first);
        const QString text = textOf(m_callDir, name);
        if (file == files.end() || text.isEmpty() || text.toUtf8() == written)
            continue;
        const EditorsMarks marks(text);
        const QString theirs = marks.without(text);
        const QString ours = QString::fromUtf8(written);
        const QString after = QString::fromUtf8(file->second);
        file->second = marks.with(name == CallDirNames::summary
                                      ? changedSummary(theirs, ours, after, carriedOver)
                                      : withSameRows(theirs, ours, after))
                           .toUtf8();
    }
}

QString HandEdits::changedSummary(const QString &theirs, const QString &ours, const QString &after,
                                  const std::function<QString(const QString &)> &carriedOver) const
{
    const QString marker = u"\n## Full text\n\n"_s;
    const auto head = [&](const QString &text) {
        const qsizetype at = text.indexOf(marker);
        return at < 0 ? text : text.left(at);
    };
    const QString top = withSameRows(head(theirs), head(ours), head(after));
    const qsizetype at = theirs.indexOf(marker);
    if (at < 0)
        return top;
    const QString full = theirs.sliced(at + marker.size());
    if (full == m_clean)
        return top + after.sliced(head(after).size());
    return top + marker + carriedOver(full);
}

} // namespace engine

#include "correct/HandEdits.h"

#include "intake/CallDir.h"
#include "output/Formats.h"

#include <QFile>
#include <QStringDecoder>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

const QString cleanName = CallDirNames::technical + u"/transcript.txt"_s;

// Empty where there is no such file and where it is no text.
QString textOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    // A byte order mark, which some editors put in front, is kept too.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    const QString text = decoder(file.readAll());
    return decoder.hasError() ? QString() : text;
}

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
    const QString text = textOf(m_callDir + u'/' + cleanName);
    return text.isEmpty() ? m_clean : text;
}

void HandEdits::keepIn(CallDirFiles &files, const std::function<QString(const QString &)> &carriedOver) const
{
    for (const auto &[name, written] : m_written) {
        const auto file = std::ranges::find(files, name, &CallDirFiles::value_type::first);
        const QString theirs = textOf(m_callDir + u'/' + name);
        if (file == files.end() || theirs.isEmpty() || theirs.toUtf8() == written)
            continue;
        const QString ours = QString::fromUtf8(written);
        const QString after = QString::fromUtf8(file->second);
        file->second = (name == CallDirNames::summary ? changedSummary(theirs, ours, after, carriedOver)
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

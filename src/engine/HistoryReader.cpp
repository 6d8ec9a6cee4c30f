#include "engine/HistoryReader.h"

#include "engine/Stages.h"

#include <QCryptographicHash>

namespace tuppi {
namespace {

using namespace Qt::StringLiterals;

constexpr QByteArrayView byteOrderMark("\xef\xbb\xbf");

bool isBlank(char byte)
{
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

/// Blocks end where the elements say so, and not after a number of them: one that is added or goes then changes its
/// own block only.
bool endsBlock(QByteArrayView element, qsizetype elements, qsizetype bytes)
{
    constexpr size_t usualElements = 32;
    constexpr qsizetype mostElements = 128;
    constexpr qsizetype mostBytes = 64 * 1024;
    return qHashBits(element.data(), size_t(element.size()), 0) % usualElements == 0 || elements >= mostElements
        || bytes >= mostBytes;
}

void count(RowCounts &counts, const QString &status, const JobNote &note, bool active)
{
    counts.active += active;
    counts.pausedWork |= active && note.paused;
    counts.ready += !active && status == "ready"_L1;
}

QByteArray digestOf(const JobList &jobs)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    for (qsizetype index = 0; index < jobs.size(); ++index) {
        const quint64 digest = jobs.noteAt(index).digest;
        hash.addData(QByteArrayView(reinterpret_cast<const char *>(&digest), sizeof digest));
    }
    return hash.result();
}

} // namespace

HistoryReader::HistoryReader(const HistoryPointer &previous)
    : m_previous(previous)
{
    if (!previous)
        return;
    for (const JobBlockPointer &block : previous->entries.blocks())
        m_known.insert(block->source.first, block);
}

void HistoryReader::take(QByteArrayView bytes)
{
    for (qsizetype at = 0; at < bytes.size() && m_state != State::Broken;) {
        if (m_state == State::Element) {
            takeElement(bytes, at);
            continue;
        }
        const char byte = bytes.at(at++);
        if (m_state == State::Start)
            start(byte);
        else if (!isBlank(byte))
            m_state = State::Broken;
    }
}

void HistoryReader::start(char byte)
{
    const bool anyMark = !m_byteOrderMark.isEmpty();
    const bool wholeMark = m_byteOrderMark == byteOrderMark;
    if (byteOrderMark.startsWith(QByteArrayView(m_byteOrderMark + byte)))
        m_byteOrderMark += byte;
    else if (byte == '[' && (!anyMark || wholeMark))
        m_state = State::Element;
    else if (!isBlank(byte) || (anyMark && !wholeMark))
        m_state = State::Broken;
    else
        m_byteOrderMark = byteOrderMark.toByteArray(); // none may follow a blank
}

/// Takes what belongs to the element, and the comma or bracket after it.
void HistoryReader::takeElement(QByteArrayView bytes, qsizetype &at)
{
    const qsizetype from = at;
    const auto keep = [&](qsizetype to) { m_source.append(bytes.data() + from, to - from); };
    for (; at < bytes.size(); ++at) {
        const char byte = bytes.at(at);
        if (m_inText) {
            if (m_escaped)
                m_escaped = false;
            else if (byte == '\\')
                m_escaped = true;
            else if (byte == '"')
                m_inText = false;
        } else if (byte == '"') {
            m_inText = true;
        } else if (byte == '{' || byte == '[') {
            ++m_depth;
        } else if (m_depth > 0) {
            m_depth -= byte == '}' || byte == ']';
        } else if (byte == ',' || byte == ']') {
            keep(at++);
            endElement(byte == ']');
            return;
        }
    }
    keep(at);
}

void HistoryReader::endElement(bool last)
{
    const QByteArrayView element = QByteArrayView(m_source).sliced(m_begin);
    const bool blank = std::all_of(element.begin(), element.end(), isBlank);
    const bool emptyReply = blank && last && m_blocks.isEmpty() && m_spans.isEmpty();
    m_state = last ? State::End : State::Element;
    if (blank && !emptyReply) {
        m_state = State::Broken;
        return;
    }
    if (!blank) {
        m_spans.append({m_begin, element.size()});
        if (!last && !endsBlock(element, m_spans.size(), m_source.size())) {
            m_source += ',';
            m_begin = m_source.size();
            return;
        }
        endBlock();
    }
}

void HistoryReader::endBlock()
{
    const SourceMark mark = MarkOf(m_source);
    JobBlockPointer block = m_known.value(mark.first);
    if (!block || block->source != mark) {
        block = PackJobs(m_source, m_spans);
        if (!block) {
            m_state = State::Broken;
            return;
        }
        m_known.insert(mark.first, block);
    }
    m_blocks.append(block);
    m_source.resize(0);
    m_spans.resize(0);
    m_begin = 0;
}

HistoryReply HistoryReader::finish(int status)
{
    if (m_state != State::End)
        return {status, nullptr};
    if (m_previous && m_previous->entries.blocks() == m_blocks)
        return {status, m_previous};
    return {status, arranged()};
}

HistoryPointer HistoryReader::arranged() const
{
    auto history = std::make_shared<History>();
    history->entries = JobList(m_blocks);
    history->listed = JobList(m_blocks);
    JobList resting(m_blocks);
    for (quint32 number = 0; number < quint32(m_blocks.size()); ++number) {
        const JobBlock &block = *m_blocks.at(number);
        for (quint32 index = 0; index < quint32(block.notes.size()); ++index) {
            const JobNote &note = block.notes.at(index);
            const QString status = QString::fromUtf8(block.status(note));
            const bool active = IsActiveStage(status);
            history->entries.append({number, index});
            if (!active && note.hidden)
                continue;
            (active ? history->listed : resting).append({number, index});
            count(history->counts, status, note, active);
        }
    }
    for (const QJsonObject &job : history->listed)
        history->active.append(job);
    history->listed.append(resting);
    history->digest = digestOf(history->listed);
    return history;
}

} // namespace tuppi

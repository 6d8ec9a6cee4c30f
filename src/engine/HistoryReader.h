#pragma once

#include "engine/EngineReplies.h"

#include <QHash>

namespace tuppi {

/// Reads a history reply as it arrives, so that its bytes, which are megabytes with a long history, never stand in
/// memory all at once. Usable is what QJsonDocument would call an array. What is the same as in the history before
/// is taken over from it and not even parsed.
class HistoryReader
{
public:
    explicit HistoryReader(const HistoryPointer &previous);

    void take(QByteArrayView bytes);
    /// After the last byte, with the exit status.
    HistoryReply finish(int status);

private:
    enum class State { Start, Element, End, Broken };

    void start(char byte);
    void takeElement(QByteArrayView bytes, qsizetype &at);
    void endElement(bool last);
    void endBlock();
    HistoryPointer arranged() const;

    HistoryPointer m_previous;
    QHash<size_t, JobBlockPointer> m_known;  ///< of the history before and of this one, by their mark's first hash
    QList<JobBlockPointer> m_blocks;
    State m_state = State::Start;
    QByteArray m_byteOrderMark;
    int m_depth = 0;          ///< of brackets inside the element
    bool m_inText = false;
    bool m_escaped = false;
    QByteArray m_source;      ///< of the block so far
    QList<std::pair<qsizetype, qsizetype>> m_spans;
    qsizetype m_begin = 0;    ///< of the element in it
};

} // namespace tuppi

#include "Fuzz.h"

#include "core/Failure.h"
#include "models/OllamaReplies.h"

using namespace Qt::StringLiterals;
using namespace engine;

namespace {

/// What a reply comes to in pieces of this size, as one text; the sentence that it ends with where it throws.
template <class Reply> QString read(Reply reply, const QByteArray &bytes, qsizetype size)
{
    try {
        for (qsizetype at = 0; at < bytes.size(); at += size)
            reply.take(QByteArrayView(bytes).sliced(at, std::min(size, bytes.size() - at)));
        if constexpr (std::is_same_v<Reply, AnswerReply>)
            return reply.finish().value_or(u"nothing"_s);
        else
            return reply.finish() ? u"yes"_s : u"no"_s;
    } catch (const Failure &failure) {
        require(!failure.sentence().isEmpty() && !failure.sentence().contains(u'\n'));
        return failure.sentence();
    }
}

} // namespace

/// The lines of a pull and of an answer: what comes in pieces is no other reply.
void readInput(const QByteArray &bytes)
{
    const PullReply pull(u"model"_s,
                         [](qint64 there, qint64 size) { require(size > 0 && there >= 0 && there <= size); });
    require(read(pull, bytes, 1) == read(pull, bytes, bytes.size() + 1));
    require(read(AnswerReply(), bytes, 1) == read(AnswerReply(), bytes, bytes.size() + 1));
}

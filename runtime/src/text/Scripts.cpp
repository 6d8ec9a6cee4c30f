#include "text/Scripts.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

constexpr char32_t longSound = U'ー'; // of Katakana, though no script's own

char32_t letterAt(QStringView text, qsizetype at)
{
    const bool pair = text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
    return pair ? QChar::surrogateToUcs4(text[at], text[at + 1]) : char32_t(text[at].unicode());
}

qsizetype unitsOf(char32_t letter)
{
    return QChar::requiresSurrogates(letter) ? 2 : 1;
}

bool isKatakana(char32_t letter)
{
    return letter == longSound || QChar::script(letter) == QChar::Script_Katakana;
}

bool isHan(char32_t letter)
{
    return QChar::script(letter) == QChar::Script_Han;
}

bool isWide(char32_t sign)
{
    return (sign >= 0x3000 && sign <= 0x303f) || (sign >= 0xff00 && sign <= 0xffef);
}

bool isSign(char32_t letter)
{
    return !QChar::isLetterOrNumber(letter) && !QChar::isMark(letter);
}

char32_t lastOf(QStringView text)
{
    const bool pair = text.size() > 1 && text.back().isLowSurrogate();
    return text.isEmpty() ? U' ' : letterAt(text, text.size() - (pair ? 2 : 1));
}

// Japanese writes what denies with letters that mean something else each on their own.
qsizetype denialAt(QStringView text, qsizetype at)
{
    static constexpr std::array<QStringView, 5> denials{u"ません", u"なかっ", u"なけれ", u"ない", u"なく"};
    for (const QStringView denial : denials) {
        if (text.sliced(at).startsWith(denial))
            return denial.size();
    }
    return 0;
}

// How much of the text belongs to the piece that begins there, without the signs behind it.
qsizetype pieceAt(QStringView text, qsizetype at)
{
    const char32_t first = letterAt(text, at);
    if (const qsizetype denial = denialAt(text, at))
        return denial;
    if (isUnspaced(first) && !isKatakana(first))
        return unitsOf(first);
    qsizetype end = at;
    while (end < text.size()) {
        const char32_t letter = letterAt(text, end);
        if (isKatakana(first) ? !isKatakana(letter) : isUnspaced(letter))
            break;
        end += unitsOf(letter);
    }
    return end - at;
}

} // namespace

bool isUnspaced(char32_t letter)
{
    return isHan(letter) || isKatakana(letter) || QChar::script(letter) == QChar::Script_Hiragana;
}

QString jointBetween(QStringView before, QStringView behind)
{
    const auto isClose = [](char32_t letter) { return isUnspaced(letter) || isWide(letter); };
    const bool close = !behind.isEmpty() && isClose(lastOf(before)) && isClose(letterAt(behind, 0));
    return close ? QString() : u" "_s;
}

QString fullStopFor(QStringView text)
{
    const auto last = std::find_if(text.rbegin(), text.rend(), [](QChar c) { return c.isLetter(); });
    if (last == text.rend())
        return u"."_s;
    switch (last->script()) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
        return u"。"_s;
    case QChar::Script_Devanagari:
    case QChar::Script_Bengali:
    case QChar::Script_Gurmukhi:
        return u"।"_s;
    case QChar::Script_Thai:
    case QChar::Script_Lao:
        return {};
    default:
        return u"."_s;
    }
}

QStringList piecesOf(QStringView text)
{
    QStringList pieces;
    qsizetype begin = 0;
    qsizetype at = 0;
    const auto skipSigns = [&] {
        while (at < text.size() && isSign(letterAt(text, at)))
            at += unitsOf(letterAt(text, at));
    };
    skipSigns(); // those in front of everything
    while (at < text.size()) {
        at += pieceAt(text, at);
        while (at < text.size() && QChar::isMark(letterAt(text, at)))
            at += unitsOf(letterAt(text, at));
        skipSigns();
        pieces.append(text.sliced(begin, at - begin).toString());
        begin = at;
    }
    if (begin < text.size())
        pieces.append(text.sliced(begin).toString());
    return pieces;
}

bool isTellingPiece(QStringView piece)
{
    if (piece.isEmpty())
        return false;
    const char32_t first = letterAt(piece, 0);
    return isHan(first) || (isKatakana(first) && piece.size() > 1);
}

} // namespace engine

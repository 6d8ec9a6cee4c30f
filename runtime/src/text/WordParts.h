#pragma once

#include <QString>

namespace engine {

// A word and the signs around it.
struct SignedWord
{
    QString lead;
    QString core;
    QString trail;

    explicit SignedWord(const QString &word);
};

// Likewise, but the point of "a.m." is a part of the word.
struct WordParts : SignedWord
{
    explicit WordParts(const QString &word);
    QString key() const { return core.toLower().replace(u'\u2019', u'\''); }
    bool endsSentence() const;
};

// Whether one of the signs ends a sentence, in any of the languages that recognisers write.
bool endsSentence(QStringView signs);

} // namespace engine

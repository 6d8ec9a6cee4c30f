#pragma once

#include <QString>

namespace engine {

// A word and the signs around it.
struct WordParts
{
    QString lead;
    QString core;
    QString trail;

    explicit WordParts(const QString &word);
    QString key() const { return core.toLower().replace(u'\u2019', u'\''); }
    bool endsSentence() const;
};

// Whether one of the signs ends a sentence, in any of the languages that recognisers write.
bool endsSentence(QStringView signs);

} // namespace engine

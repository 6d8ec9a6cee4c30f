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

} // namespace engine

#pragma once

#include "text/CleanText.h"

#include <QStringList>

namespace engine {

// A sentence about a summary. It is looked up in the reader's language by its format, and then filled: "%@" stands for
// each value in turn.
struct Remark
{
    QString format;
    QStringList values = {};
};

inline Remark remark(const QString &format, const QStringList &values = {})
{
    return {format, values};
}

QString filled(const Remark &remark);

// What matters of a transcript: picked out, word for word and in the order in which it was said, or written by a text
// model.
struct Summary
{
    QStringList sentences;    // picked out: those that share most with the rest
    QStringList tasks;        // what is to be done, picked out with the name of who says it
    QString model = {};       // the text model that wrote it; empty: picked out
    QList<Remark> missing = {}; // what it lacks
};

Summary extractSummary(const std::vector<Sentence> &sentences, const QString &language);

} // namespace engine

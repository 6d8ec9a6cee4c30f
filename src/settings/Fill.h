#pragma once

#include <QString>
#include <QVariantList>

namespace tuppi {

/// Fills a format of the localisation tables: %@ (any value as text), %lu, %ld and %d (whole numbers),
/// %.Nf (N decimals), the same with a position (%1$@), and %% for a percent sign.
///
/// A translation may hold the wrong placeholders and must not take the sentence down with it: a placeholder
/// without an argument becomes nothing, an argument without a placeholder is dropped, an argument of another
/// kind is shown as its text, and anything else after a percent sign stays as it stands.
QString Fill(const QString &format, const QVariantList &arguments);

/// A text that others gave, a name or what was pasted, as one line: what breaks lines or is no text at all becomes a
/// blank.
QString OneLine(const QString &text);

} // namespace tuppi

#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>

namespace tuppi {

/// The file name extensions of recordings, lower-case, without the dot.
const QStringList &acceptedExtensions();

/// True for a file of this computer whose name ends in an accepted extension, in any case. Decided by the
/// name alone: nothing is opened or looked up, so that a drag over a slow disk does not stall the window.
bool isAcceptedAudioFile(const QUrl &url);

/// The accepted ones, in their order; duplicates stay.
QList<QUrl> acceptedAudioFiles(const QList<QUrl> &urls);

} // namespace tuppi

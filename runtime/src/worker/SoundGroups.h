#pragma once

#include "recognise/Recogniser.h"

namespace engine {

// A segment as part of a longer sound.
struct Piece
{
    Segment segment;
    qint64 offsetMs = 0; // where it begins in the sound
    qint64 tailMs = 0;   // how much of the pause behind it is in the sound

    qint64 soundMs() const { return segment.endMs - segment.startMs + tailMs; }
};

// Cuts a plan into groups whose sound is no longer than that, each a segment at least, at the longest pause
// in the second half. They depend on the plan alone, so that a job that goes on finds the same groups.
std::vector<std::vector<Segment>> groupsOf(const std::vector<Segment> &plan, qint64 longestMs);

// One sound of those segments: of the pauses between them only the beginning is left, since long silence
// makes recognisers invent words.
std::vector<Piece> joinedSound(const std::vector<Segment> &segments);

// What was heard in such a sound, for each piece, at its time in the recording. A phrase that lies mostly in
// one piece belongs to it as a whole; the words of others go where they lie themselves.
std::vector<std::vector<Word>> wordsByPiece(const std::vector<Piece> &pieces, const Heard &heard);

} // namespace engine

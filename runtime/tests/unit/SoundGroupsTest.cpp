#include "worker/SoundGroups.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

namespace {

Segment segment(int number, qint64 startMs, qint64 endMs)
{
    return {number, startMs, endMs, std::nullopt};
}

std::vector<size_t> sizes(const std::vector<std::vector<Segment>> &groups)
{
    std::vector<size_t> found;
    for (const std::vector<Segment> &group : groups)
        found.push_back(group.size());
    return found;
}

const std::vector<Segment> plan{segment(0, 0, 1000), segment(1, 1200, 2200), segment(2, 4000, 5000),
                                segment(3, 5300, 6300), segment(4, 6600, 9600)};

} // namespace

TEST(SoundGroups, areSegmentsOneByOneWhereNothingLongerIsWanted)
{
    EXPECT_EQ(sizes(groupsOf(plan, 0)), (std::vector<size_t>{1, 1, 1, 1, 1}));
    EXPECT_TRUE(groupsOf({}, 0).empty());
}

TEST(SoundGroups, endAtTheLongestPauseOfTheSecondHalf)
{
    EXPECT_EQ(sizes(groupsOf(plan, 3500)), (std::vector<size_t>{2, 2, 1}));
    EXPECT_EQ(sizes(groupsOf(plan, 5000)), (std::vector<size_t>{4, 1}));
    EXPECT_EQ(sizes(groupsOf(plan, 100000)), (std::vector<size_t>{5}));
}

TEST(SoundGroups, keepOnlyTheBeginningOfAPause)
{
    const std::vector<Piece> pieces = joinedSound({plan[0], plan[1], plan[2]});
    EXPECT_EQ(pieces[0].tailMs, 200);
    EXPECT_EQ(pieces[1].offsetMs, 1200);
    EXPECT_EQ(pieces[1].tailMs, 500);
    EXPECT_EQ(pieces[2].offsetMs, 2700);
    EXPECT_EQ(pieces[2].tailMs, 0);
}

TEST(SoundGroups, giveAPhraseToThePieceInWhichItMostlyLies)
{
    const std::vector<Piece> pieces = joinedSound({plan[1], plan[2]});
    // The last word is said to lie in the pause, by a little.
    const Heard heard{{{0, 1500, {{u"one"_s, 0, 900}, {u"two"_s, 900, 1550}}},
                       {1500, 2500, {{u"three"_s, 1400, 1500}, {u"four"_s, 1600, 2500}}}},
                      {}};
    const auto words = wordsByPiece(pieces, heard);
    EXPECT_EQ(words[0], (std::vector<Word>{{u"one"_s, 1200, 2100}, {u"two"_s, 2100, 2200}}));
    EXPECT_EQ(words[1], (std::vector<Word>{{u"three"_s, 4000, 4000}, {u"four"_s, 4100, 5000}}));
}

TEST(SoundGroups, divideAPhraseThatLiesInTwoPieces)
{
    const std::vector<Piece> pieces = joinedSound({plan[1], plan[2]});
    const Heard heard{{{500, 2500, {{u"one"_s, 500, 900}, {u"two"_s, 1600, 2400}}}}, {}};
    const auto words = wordsByPiece(pieces, heard);
    EXPECT_EQ(words[0], (std::vector<Word>{{u"one"_s, 1700, 2100}}));
    EXPECT_EQ(words[1], (std::vector<Word>{{u"two"_s, 4100, 4900}}));
}

} // namespace engine

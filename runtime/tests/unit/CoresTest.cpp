#include "core/Cores.h"

#include "Support.h"

using namespace Qt::StringLiterals;

namespace engine {

TEST(Cores, aDecoderForEachCoreThatIsFree)
{
    constexpr long long gigabyte = 1LL << 30;
    struct Case
    {
        int cores;
        long long available;
        QString asked;
        int decoders;
    };
    const Case cases[] = {
        {1, 8 * gigabyte, {}, 1},
        {2, 8 * gigabyte, {}, 2},
        {16, 8 * gigabyte, {}, 16},
        {16, gigabyte, {}, 4},
        {16, 1, {}, 1},
        {4, 0, {}, 4},
        {4, 8 * gigabyte, u"1"_s, 1},
        {4, 8 * gigabyte, u"64"_s, 4},
        {4, 8 * gigabyte, u"0"_s, 4},
        {4, 8 * gigabyte, u"-1"_s, 4},
        {4, 8 * gigabyte, u"many"_s, 4},
    };
    for (const Case &one : cases)
        EXPECT_EQ(decodersFor(one.cores, one.available, one.asked), one.decoders)
            << one.cores << ' ' << one.available << ' ' << one.asked.toStdString();
    EXPECT_GE(decodersAllowed(), 1);
}

} // namespace engine

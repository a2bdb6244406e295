// The state that the program round the library leaves its floating point unit in, and what then holds here.
#include <gtest/gtest.h>

#include <cfenv>
#include <string>
#include <vector>

#include "formatset/NumberText.h"
#include "platform/FloatingPoint.h"
#include "platform/Thread.h"

namespace Dravel {
namespace {

// Prices of two to six decimals, as files have them.
std::vector<double> Prices() {
    std::vector<double> prices;
    for (int i = 1; i <= 400; ++i) {
        std::string text = std::to_string(1000 * i + 7 * i) + '.' + std::to_string(100000 + 1237 * i);
        prices.push_back(ReadDouble(text));
    }
    return prices;
}

struct Rounding {
    explicit Rounding(int mode) { std::fesetround(mode); }
    ~Rounding() { std::fesetround(FE_TONEAREST); }
};

TEST(FloatingPoint, NumbersReadTheSameWhateverRoundingIsLeft) {
    const std::vector<double> right = Prices();
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        const Rounding left(mode);
        EXPECT_NE(Prices(), right) << "this mode would change nothing";
        {
            const FloatingPointScope ours;
            EXPECT_EQ(std::fegetround(), FE_TONEAREST);
            EXPECT_EQ(Prices(), right);
            std::fesetround(mode);
            {
                const FloatingPointScope inner;
                EXPECT_EQ(Prices(), right);
            }
        }
        EXPECT_EQ(std::fegetround(), mode) << "given back";
        EXPECT_NE(Prices(), right);
        // A thread of ours, made while the other state holds.
        std::vector<double> read;
        KRV::Thread::CKRVThread thread;
        ASSERT_TRUE(thread.Start([&] { read = Prices(); }));
        thread.Join();
        EXPECT_EQ(read, right);
    }
}

}  // namespace
}  // namespace Dravel

#include <gtest/gtest.h>

#include <string>

#include "support/OuterCall.h"

namespace Dravel {
namespace {

struct Part {
    std::string& went;
    char name;
    ~Part() { went += name; }
};

TEST(OuterCallTest, WhatIsKeptGoesInOrderWhenTheOutermostCallEnds) {
    std::string went;
    const auto keep = [&](char name) { KeepForCalls(std::make_shared<Part>(went, name)); };
    keep('a');
    EXPECT_EQ(went, "a") << "no call is under way";
    {
        const OuterCall outer;
        {
            const OuterCall inner;
            keep('b');
            keep('c');
        }
        EXPECT_EQ(went, "a");
    }
    EXPECT_EQ(went, "abc");
}

TEST(OuterCallTest, WhatGoesMayCallAndLeaveMoreBehind) {
    std::string went;
    struct Leaver {
        std::string& went;
        ~Leaver() {
            const OuterCall call;
            KeepForCalls(std::make_shared<Part>(went, 'x'));
            went += 'l';
        }
    };
    {
        const OuterCall call;
        KeepForCalls(std::make_shared<Leaver>(went));
    }
    EXPECT_EQ(went, "lx");
}

}  // namespace
}  // namespace Dravel

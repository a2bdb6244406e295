#include "tradebook/base/PostedWork.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace Dravel {
namespace {

struct PostedWorkTest : testing::Test {
    PostedWork work;
    std::string done;
    int woken = 0;

    void Post(std::function<void()> piece) {
        work.Add(std::move(piece), [this] { ++woken; });
    }
    // As the bar does: what a piece throws ends that piece.
    void Run() {
        work.Run([](const std::function<void()>& piece) {
            try {
                piece();
            } catch (const std::exception&) {
            }
        });
    }
    void Post(char name) {
        Post([this, name] { done += name; });
    }
};

TEST_F(PostedWorkTest, ABoxIsOvertakenByNothingThatCameLater) {
    Post([this] {
        done += "[";
        Post('c');
        Run();  // as the box's messages do
        Post('d');
        done += "]";
    });
    Post('a');
    Post('b');
    Run();
    EXPECT_EQ(done, "[abc]d");
    EXPECT_EQ(woken, 5) << "once for each, for the messages of a box may take any of them";
}

TEST_F(PostedWorkTest, AFailureHoldsNothingUpAndTheEndDropsWhatWaits) {
    Post([] { throw std::runtime_error("expected"); });
    Post('a');
    Post([this] { work.Close(); });
    Post('b');
    Run();
    Post('c');
    Run();
    EXPECT_EQ(done, "a");
}

}  // namespace
}  // namespace Dravel

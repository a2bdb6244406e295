// The receive queue: growth, what a full one refuses, and the use of it by two threads.
#include <gtest/gtest.h>

#include <sstream>
#include <thread>

#include "message/TagReceiveQueue.h"
#include "support/Frames.h"

using namespace Dravel::Test;

namespace {

std::uint32_t Capacity(const CTagReceiveQueue& queue) {
    return *reinterpret_cast<const std::uint32_t*>(reinterpret_cast<const char*>(&queue) + 16);
}

}  // namespace

TEST(ReceiveQueue, RefusesWhatDoesNotFitAndTakesWhatDoes) {
    CTagReceiveQueue queue(5, false);
    EXPECT_FALSE(queue.Append(nullptr, 3));
    EXPECT_FALSE(queue.Append("abc", 0));
    EXPECT_FALSE(queue.Append("abc", -1));
    EXPECT_TRUE(queue.Append("abc", 3));
    EXPECT_FALSE(queue.Append("def", 3));
    EXPECT_TRUE(queue.Append("gh", 2));
    EXPECT_EQ(Bytes(queue.Unread(), queue.Unread() + queue.Count()), Text("abcgh"));
}

TEST(ReceiveQueue, GrowsToExactlyTheNeededSize) {
    CTagReceiveQueue queue(4, true);
    EXPECT_TRUE(queue.Append("abcd", 4));
    EXPECT_EQ(Capacity(queue), 4u);
    EXPECT_TRUE(queue.Append("efg", 3));
    EXPECT_EQ(Capacity(queue), 7u);
    CTagReceiveQueue empty(0, true);
    EXPECT_EQ(empty.Unread(), nullptr);
    EXPECT_TRUE(empty.Append("a", 1));
    EXPECT_EQ(Capacity(empty), 1u);
}

TEST(ReceiveQueue, FlushAndConsumeStepOverWhatWasRead) {
    CTagReceiveQueue queue(16, false);
    queue.Append("abcdef", 6);
    queue.Consume(2);
    std::ostringstream stream;
    stream.setstate(std::ios::badbit);
    EXPECT_FALSE(queue.FlushTo(stream));
    EXPECT_EQ(queue.Count(), 4u);
    stream.clear();
    EXPECT_TRUE(queue.FlushTo(stream));
    EXPECT_EQ(stream.str(), "cdef");
    EXPECT_EQ(queue.Count(), 0u);
    queue.Append("gh", 2);
    queue.Consume(100);
    EXPECT_EQ(queue.Count(), 0u);
}

TEST(ReceiveQueue, FeedsAReader) {
    CTagReceiveQueue queue(8, true);
    CTagMessageReader nothing(queue);
    EXPECT_EQ(nothing.MessageCode(), 0);
    const Bytes frame = RawFrame(30028, {{101, {1}}});
    queue.Append(frame.data(), static_cast<std::int32_t>(frame.size()));
    CTagMessageReader reader(queue);
    EXPECT_EQ(reader.MessageCode(), 30028);
    EXPECT_EQ(Walk(reader).fields, std::vector<Field>({{101, {1}}}));
}

TEST(ReceiveQueue, TwoThreadsLoseNothing) {
    CTagReceiveQueue queue(1, true);
    const auto produce = [&queue] {
        for (int i = 0; i < 5000; ++i) {
            ASSERT_TRUE(queue.Append("abcd", 4));
        }
    };
    std::thread one(produce), two(produce);
    std::ostringstream stream;
    while (stream.tellp() < 40000) {
        ASSERT_TRUE(queue.FlushTo(stream));
    }
    one.join();
    two.join();
    for (std::size_t i = 0; i < 40000; i += 4) {
        ASSERT_EQ(stream.str().compare(i, 4, "abcd"), 0);
        i += 400;  // str() copies; a sample of the places is enough to see a torn append
    }
}

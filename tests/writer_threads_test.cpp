// The store of pending items and the writer thread.
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

#include "records/ADAWriteAsync.h"
#include "support/BookRig.h"

using namespace Dravel;
using namespace Dravel::Test;
using namespace KRV::Base;

namespace {

struct Item final : IADAItem {
    Item(std::function<void()> act, std::atomic<int>& releases) : work(std::move(act)), released(releases) {}
    void Write() override { work(); }
    void Release() override {
        ++released;
        delete this;
    }
    std::function<void()> work;
    std::atomic<int>& released;
};

}  // namespace

TEST(ADAStore, CarriesOutInOrderAndReleasesEverything) {
    std::atomic<int> released = 0;
    std::string done;
    {
        CKRVADAStore store;
        for (const char c : {'a', 'b', 'c'}) {
            store.Add(new Item([&done, c] { done += c, c == 'b' ? throw std::runtime_error("b") : void(); },
                               released));
        }
        EXPECT_EQ(store.Count(), 3u);
        store.Drain();
        EXPECT_EQ(done, "abc") << "one that throws holds up nobody";
        EXPECT_EQ(released, 3);
        store.Add(new Item([&done] { done += "x"; }, released));
        store.Clear();
        EXPECT_EQ(store.Count(), 0u);
        store.Add(new Item([&done] { done += "x"; }, released));
    }
    EXPECT_EQ(done, "abc");
    EXPECT_EQ(released, 5);
}

TEST(ThreadsWriter, NothingIsLostOverManyStartsAndStops) {
    FakeLog log;
    std::atomic<int> written = 0, released = 0;
    int posted = 0;
    for (int cycle = 0; cycle < 500; ++cycle) {
        CKRVADAWriteAsync writer(log);
        std::atomic<int> taken = 0;
        const auto produce = [&] {
            for (int i = 0; i < 5; ++i) {
                auto* item = new Item([&written] { ++written; }, released);
                writer.Post(item) ? void(++taken) : delete item;
            }
        };
        std::thread first(produce), second(produce);
        if (cycle % 2) writer.Stop();
        first.join();
        second.join();
        writer.Stop();
        writer.Stop();
        posted += taken;
    }
    EXPECT_EQ(written, posted);
    EXPECT_EQ(released, posted);
    EXPECT_GT(posted, 500);
    EXPECT_TRUE(log.lines.empty());
}

TEST(ThreadsWriter, StopCarriesOutWhatIsQueuedInOrder) {
    FakeLog log;
    std::atomic<int> released = 0;
    std::string done;
    std::atomic<bool> go = false;
    CKRVADAWriteAsync writer(log);
    writer.Post(new Item(
        [&] {
            while (!go)
                std::this_thread::yield();
        },
        released));
    for (char c = 'a'; c <= 'z'; ++c) {
        ASSERT_TRUE(writer.Post(new Item([&done, c] { done += c, c == 'm' ? throw 1 : void(); }, released)));
    }
    go = true;
    writer.Stop();
    EXPECT_EQ(done, "abcdefghijklmnopqrstuvwxyz");
    EXPECT_EQ(released, 27);
    Item refused([] {}, released);
    EXPECT_FALSE(writer.Post(&refused)) << "a stopped writer takes nothing";
}

// An idle writer is woken by each item, well before its time-out.
TEST(ThreadsWriter, ItemsAreCarriedOutAtOnce) {
    FakeLog log;
    CKRVADAWriteAsync writer(log);
    std::atomic<int> released = 0;
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 1; i <= 200; ++i) {
        writer.Post(new Item([] {}, released));
        while (released < i)
            std::this_thread::yield();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(kWriterWakeUp));
}

TEST(ThreadsWriter, SavesTellTheirResultAndFollowOneAnother) {
    BookRig rig;
    ASSERT_TRUE(rig.Start());
    std::string told;
    {
        CKRVADAWriteAsync writer(rig.log);
        for (std::size_t n = 0; n < 5; ++n) {
            writer.Post(
                new BookSaveItem(*rig.file, ImageOf(SomeTrades(n)), [&told, n](const SaveResult& result) {
                    told += std::to_string(n) + (result.ok ? "+" : "-");
                }));
        }
    }
    EXPECT_EQ(told, "0+1+2+3+4+");
    EXPECT_TRUE(Same(rig.Reopen(), SomeTrades(4)));
}

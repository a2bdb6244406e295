// Frames as bytes: what each append writes, how the buffer grows, how a frame is finished.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "message/FieldBytes.h"
#include "support/Frames.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

// Fills a new frame until its write position is `position`.
void FillTo(CTagMessageWriter& writer, std::size_t position) {
    const std::string filler(65000, 'x');
    for (std::size_t at = writer.GetLength(); at < position; at = writer.GetLength()) {
        std::size_t size = std::min<std::size_t>(position - at, 4000);
        if (position - at - size < 5 && position - at != size) size -= 5;  // leaves room for one more field
        ASSERT_GE(size, 5u);
        ASSERT_TRUE(writer.AppendBytes(55001, filler.data(), static_cast<std::uint16_t>(size - 5)));
    }
    ASSERT_EQ(writer.GetLength(), position);
}

// Offset of the capacity in the shared layout.
std::uint32_t Capacity(const CTagMessageWriter& writer) {
    return wire::Get<std::uint32_t>(reinterpret_cast<const std::uint8_t*>(&writer));
}

}  // namespace

TEST(MessageWriter, FrameWithoutFieldsIsItsHeader) {
    CTagMessageWriter writer;
    EXPECT_EQ(writer.GetLength(), 10);
    EXPECT_EQ(Finished(writer), Bytes({'#', 1, 0, 0, 0, '#', 0x11, 0x27, 0, 0}));
}

TEST(MessageWriter, AppendsWriteTheirBytes) {
    const char fourBytes[4] = {'a', 'b', 0, 'd'};
    struct Case {
        std::function<bool(CTagMessageWriter&)> append;
        Bytes field;
    };
    const Case cases[] = {
        {[](auto& w) { return w.AppendByte(101, 0xFE); }, {'#', 101, 0, 0xFE}},
        {[](auto& w) { return w.Append16(10002, 0x1234); }, {'#', 0x12, 0x27, 0x34, 0x12}},
        {[](auto& w) { return w.Append32(20014, 0x12345678); }, {'#', 0x2E, 0x4E, 0x78, 0x56, 0x34, 0x12}},
        {[](auto& w) { return w.Append64(30001, 0x0102030405060708); },
         {'#', 0x31, 0x75, 8, 7, 6, 5, 4, 3, 2, 1}},
        {[](auto& w) { return w.AppendDouble(40002, -2.0); }, {'#', 0x42, 0x9C, 0, 0, 0, 0, 0, 0, 0, 0xC0}},
        {[](auto& w) { return w.Append35001(7); }, {'#', 0xB9, 0x88, 7, 0, 0, 0}},
        {[](auto& w) { return w.Append30002(7); }, {'#', 0x32, 0x75, 7, 0, 0, 0, 0, 0, 0, 0}},
        {[](auto& w) { return w.AppendBytes(55010, "ab", 2); }, {'#', 0xE2, 0xD6, 2, 0, 'a', 'b'}},
        {[](auto& w) { return w.AppendBytes(55010, nullptr, 0); }, {'#', 0xE2, 0xD6, 0, 0}},
        {[](auto& w) { return w.AppendText(55010, "abc", 3, false); },
         {'#', 0xE2, 0xD6, 3, 0, 'a', 'b', 'c'}},
        {[](auto& w) { return w.AppendText(55010, "abc", 2, false); }, {'#', 0xE2, 0xD6, 2, 0, 'a', 'b'}},
        {[&](auto& w) { return w.AppendText(55010, fourBytes, 4, false); },
         {'#', 0xE2, 0xD6, 2, 0, 'a', 'b'}},
        {[&](auto& w) { return w.AppendText(55010, fourBytes, 4, true); },
         {'#', 0xE2, 0xD6, 4, 0, 'a', 'b', 0, 'd'}},
        {[](auto& w) { return w.AppendString(55010, "ab"); }, {'#', 0xE2, 0xD6, 3, 0, 'a', 'b', 0}},
        {[](auto& w) { return w.AppendEndMark(); }, {'#', 0xFF, 0xFF}},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(::testing::PrintToString(one.field));
        CTagMessageWriter writer;
        EXPECT_TRUE(one.append(writer));
        EXPECT_EQ(Finished(writer), RawFrame(one.field));
    }
}

TEST(MessageWriter, GrowsByAWholePageMoreThanNeeded) {
    struct Case {
        std::size_t position, size;
        std::uint32_t capacity;
    };
    const Case cases[] = {{4091, 5, 4096},  {4092, 5, 8192},   {4096, 4096, 12288},
                          {10, 8181, 8192}, {10, 8182, 12288}, {8192, 49147, 57344}};
    for (const Case& one : cases) {
        CTagMessageWriter writer;
        FillTo(writer, one.position);
        EXPECT_TRUE(writer.AppendBytes(55001, std::string(one.size, 0).data(),
                                       static_cast<std::uint16_t>(one.size - 5)));
        EXPECT_EQ(Capacity(writer), one.capacity) << one.position << " + " << one.size;
        EXPECT_EQ(Finished(writer).size(), one.position + one.size);
    }
}

TEST(MessageWriter, FailedAppendLeavesTheFrameAsItWas) {
    CTagMessageWriter writer;
    FillTo(writer, 61430);
    const Bytes before = Finished(writer);
    const std::string large(65535, 'x');
    EXPECT_FALSE(writer.Append64(30001, 1));
    EXPECT_FALSE(writer.AppendBytes(55001, large.data(), 65535));
    EXPECT_FALSE(writer.AppendString(55001, large));
    EXPECT_EQ(writer.ReserveFields(11), nullptr);
    EXPECT_EQ(writer.ReserveFields(SIZE_MAX - 5), nullptr);
    EXPECT_EQ(Finished(writer), before);
    EXPECT_TRUE(writer.Append32(20014, 1));
    EXPECT_TRUE(writer.AppendEndMark());
    EXPECT_EQ(writer.GetLength(), 61440);
    EXPECT_FALSE(writer.AppendEndMark());
    EXPECT_EQ(WalkAll(Finished(writer)).consumed, 61440u);
}

TEST(MessageWriter, ReservedFieldsEqualSingleAppends) {
    CTagMessageWriter single(msg::TradeReport), batch(msg::TradeReport);
    for (int round = 0; round < 400; ++round) {
        single.Append32(20014, 77);
        single.AppendBytes(55010, "NSE", 3);
        std::uint8_t* at = batch.ReserveFields(40);
        ASSERT_NE(at, nullptr);
        std::uint8_t* end = wire::PutBytes(wire::PutField(at, 20014, std::uint32_t{77}), 55010, "NSE", 3);
        batch.CommitFields(static_cast<std::size_t>(end - at));
    }
    EXPECT_EQ(Finished(single), Finished(batch));
}

TEST(MessageWriter, FinishesAgainUntilAFinishedBufferExists) {
    CTagMessageWriter plain(30028), deflated(30028, BodyEncoding::Deflated);
    for (CTagMessageWriter* writer : {&plain, &deflated}) {
        writer->GetLength();
        writer->AppendByte(101, 1);
    }
    EXPECT_EQ(WalkAll(Finished(plain)).frames, std::vector<Frame>({{30028, {{101, {1}}}}}));
    EXPECT_EQ(WalkAll(Finished(deflated)).frames, std::vector<Frame>({{30028, {}}}));
}

TEST(MessageWriter, EncipheredFrameLeavesPlainBehindItsHeader) {
    CTagMessageWriter writer(30028, BodyEncoding::Enciphered);
    writer.AppendByte(101, 1);
    const Bytes body = RawField(10002, Little<std::uint16_t>(30028)) + RawField(101, {1});
    EXPECT_EQ(Finished(writer), RawFrame(body, 2));
    CTagMessageWriter empty(BodyEncoding::Enciphered);
    EXPECT_EQ(Finished(empty), RawFrame(Bytes(), 2));
}

TEST(MessageWriter, DeflatedBodiesOfEverySizeComeBack) {
    std::uint32_t noise = 1;
    for (const std::size_t size : {0, 1, 100, 4000, 12000, 61000}) {
        for (const bool compressible : {true, false}) {
            Bytes value(size, 'a');
            for (std::uint8_t& byte : value) {
                noise = noise * 1664525 + 1013904223;
                if (!compressible) byte = static_cast<std::uint8_t>(noise >> 24);
            }
            CTagMessageWriter writer(30028, BodyEncoding::Deflated);
            ASSERT_TRUE(writer.AppendBytes(55001, value.data(), static_cast<std::uint16_t>(size)));
            const Bytes frame = Finished(writer);
            EXPECT_EQ(wire::Get<std::uint16_t>(frame.data() + 8), frame.size() - 10);
            EXPECT_EQ(WalkAll(frame).frames, std::vector<Frame>({{30028, {{55001, value}}}})) << size;
        }
    }
    CTagMessageWriter empty(BodyEncoding::Deflated);
    EXPECT_EQ(Finished(empty).size(), 18u);  // the smallest stream there is
}

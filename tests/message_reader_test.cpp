// Frames from bytes that nobody vouches for: where they begin, whether they are whole, what their fields
// hold.
#include <gtest/gtest.h>
#include <zlib.h>

#include <random>
#include <string>

#include "fuzz/frame_fuzz.h"
#include "message/FieldBytes.h"
#include "support/Frames.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

const Bytes kSmall = RawFrame(30028, {{101, {2}}, {55010, Text("NSE")}});

// A reader standing behind the tag of the only field in `body`.
class AtField {
 public:
    explicit AtField(const Bytes& body)
        : frame_(RawFrame(RawField(10002, Little<std::uint16_t>(30028)) + body)),
          reader_(frame_.data(), static_cast<std::uint16_t>(frame_.size())) {
        EXPECT_TRUE(reader_.Open().opened && reader_.NextTag());
    }
    CTagMessageReader* operator->() { return &reader_; }

 private:
    Bytes frame_;
    CTagMessageReader reader_;
};

Bytes Deflated(const Bytes& body) {
    Bytes packed(compressBound(static_cast<uLong>(body.size())));
    uLongf size = static_cast<uLongf>(packed.size());
    EXPECT_EQ(compress(packed.data(), &size, body.data(), static_cast<uLong>(body.size())), Z_OK);
    packed.resize(size);
    return packed;
}

// A body of `size` bytes: the message code, then one value of a length that fills the rest.
Bytes BodyOfSize(std::size_t size) {
    return RawField(10002, Little<std::uint16_t>(30028)) + RawField(55001, Bytes(size - 10, 'v'));
}

// Random frames of every width, every tenth deflated.
class RandomFrames {
 public:
    explicit RandomFrames(std::uint32_t seed) : random_(seed) {}
    std::uint32_t Below(std::uint32_t end) { return static_cast<std::uint32_t>(random_() % end); }

    Bytes Next(Frame& frame) {
        frame = {static_cast<std::uint16_t>(Below(65536)), {}};
        CTagMessageWriter writer(frame.code, Below(10) == 0 ? BodyEncoding::Deflated : BodyEncoding::Plain);
        for (std::uint32_t left = Below(12); left > 0; --left) {
            frame.fields.push_back(Append(writer));
        }
        return Finished(writer);
    }

 private:
    Field Append(CTagMessageWriter& writer) {
        static constexpr std::uint16_t kFirst[] = {1, 10001, 20001, 30001, 35001, 40001, 50001, 55001, 60001};
        const auto tag = static_cast<std::uint16_t>(kFirst[Below(std::size(kFirst))] + Below(4999));
        const std::uint32_t width = TagWidth(tag);
        Bytes value(width == kVariableWidth ? Below(300) : width);
        for (std::uint8_t& byte : value) {
            byte = Below(4) == 0 ? std::uint8_t{'#'} : static_cast<std::uint8_t>(Below(256));
        }
        EXPECT_TRUE(AppendTo(writer, tag, value));
        return {tag, value};
    }

    static bool AppendTo(CTagMessageWriter& writer, std::uint16_t tag, const Bytes& value) {
        const std::uint8_t* at = value.data();
        switch (TagWidth(tag)) {
            case 1:
                return writer.AppendByte(tag, *at);
            case 2:
                return writer.Append16(tag, wire::Get<std::uint16_t>(at));
            case 4:
                return writer.Append32(tag, wire::Get<std::uint32_t>(at));
            case 8:
                return writer.Append64(tag, wire::Get<std::uint64_t>(at));
            default:
                return writer.AppendBytes(tag, at, static_cast<std::uint16_t>(value.size()));
        }
    }

    std::mt19937 random_;
};

// Frames of about `size` bytes in all, and where each ends.
Bytes SomeStream(std::size_t size, std::vector<Frame>& frames, std::vector<std::size_t>& ends) {
    RandomFrames random(7);
    Bytes stream;
    while (stream.size() < size) {
        stream = stream + random.Next(frames.emplace_back());
        ends.push_back(stream.size());
    }
    return stream;
}

}  // namespace

TEST(MessageReader, WidthFollowsFromTheTag) {
    // The first tag of each width, which holds up to the next.
    constexpr std::pair<std::uint32_t, std::uint32_t> kWidths[] = {
        {0, 0},     {1, 1},     {10001, 2},  {20001, 4}, {30001, 8},
        {35001, 4}, {40001, 8}, {45001, 16}, {50001, 8}, {55001, kVariableWidth},
        {65001, 0}, {65536, 0}};
    for (std::size_t i = 0; i + 1 < std::size(kWidths); ++i) {
        for (std::uint32_t tag = kWidths[i].first; tag < kWidths[i + 1].first; ++tag)
            ASSERT_EQ(TagWidth(static_cast<std::uint16_t>(tag)), kWidths[i].second) << tag;
    }
}

TEST(MessageReader, OpeningTellsWhatItConsumedAndNeeds) {
    const std::uint32_t whole = static_cast<std::uint32_t>(kSmall.size());
    Bytes wrongTag = kSmall, wrongEncoding = kSmall, noCode = kSmall, enciphered = kSmall, huge = kSmall;
    wrongTag[1] = 2;
    wrongEncoding[3] = 3;
    noCode[11] = 0x13;
    enciphered[3] = 100;
    huge[8] = huge[9] = 0xFF;
    const Bytes shortBody = RawFrame(Text("#\x12\x27\x01"));  // a message code of one byte
    struct Case {
        const char* what;
        Bytes bytes;
        bool opened;
        std::uint32_t consumed, needed;
    };
    const Case cases[] = {
        {"nothing", {}, false, 0, 0},
        {"nine bytes", Bytes(9, '#'), false, 0, 0},
        {"no header", Bytes(30, '#'), false, 21, 0},
        {"whole", kSmall, true, whole, 0},
        {"strays in front", Text("##a#\x01") + kSmall, true, whole + 5, 0},
        {"more behind", kSmall + kSmall, true, whole, 0},
        {"body cut off", Text("xy") + Bytes(kSmall.begin(), kSmall.end() - 1), false, 2, whole},
        {"header only", Bytes(kSmall.begin(), kSmall.begin() + 10), false, 0, whole},
        {"header cut off", Bytes(kSmall.begin(), kSmall.begin() + 9), false, 0, 0},
        {"length beyond 16 bits", huge, false, 0, 65545},
        {"other tag in the header", wrongTag, false, whole - 9, 0},
        {"unknown encoding", Text("z") + wrongEncoding, false, whole + 1, 0},
        {"enciphered", enciphered, false, whole, 0},
        {"first tag is another", noCode, false, whole, 0},
        {"message code cut off", shortBody, false, 14, 0},
        {"empty body", RawFrame(Bytes()), false, 10, 0},
    };
    for (const Case& one : cases) {
        CTagMessageReader reader(one.bytes.data(), static_cast<std::uint16_t>(one.bytes.size()));
        const FrameOpening found = reader.Open();
        EXPECT_EQ(found.opened, one.opened) << one.what;
        EXPECT_EQ(found.consumed, one.consumed) << one.what;
        EXPECT_EQ(found.needed, one.needed) << one.what;
        EXPECT_EQ(reader.MessageCode(), one.opened ? 30028 : 0) << one.what;
    }
}

TEST(MessageReader, InflatesUpToWhatItCanWalk) {
    const auto open = [](const Bytes& packed) {
        const Bytes frame = RawFrame(packed, 1);
        CTagMessageReader reader(frame.data(), static_cast<std::uint16_t>(frame.size()));
        const FrameOpening found = reader.Open();
        EXPECT_EQ(found.consumed, frame.size());
        return found.opened;
    };
    EXPECT_TRUE(open(Deflated(BodyOfSize(65535))));
    EXPECT_FALSE(open(Deflated(BodyOfSize(65535) + Text("x"))));
    EXPECT_FALSE(open(Deflated(Bytes(50'000'000, 0))));  // about 48,600 bytes on the wire
    const Bytes packed = Deflated(BodyOfSize(5000));
    EXPECT_TRUE(open(packed + Text("strays")));
    EXPECT_FALSE(open(Bytes(packed.begin(), packed.end() - 1)));
    EXPECT_FALSE(open({}));
    Bytes stored(100);
    uLongf size = 100;
    const Bytes body = BodyOfSize(20);
    ASSERT_EQ(compress2(stored.data(), &size, body.data(), 20, 0), Z_OK);
    stored.resize(size);
    EXPECT_TRUE(open(stored));
    stored.back() ^= 1;  // its plain fields must not be taken for a body
    EXPECT_FALSE(open(stored));
    for (std::size_t at = packed.size() - 4; at < packed.size(); ++at) {
        Bytes damaged = packed;
        damaged[at] ^= 0x10;  // the checksum
        EXPECT_FALSE(open(damaged)) << at;
    }
}

TEST(MessageReader, NextTagHuntsAndStopsAtTheEnd) {
    AtField stray(Text("zz#\x65") + Bytes({0, 9}));
    EXPECT_EQ(stray->CurrentTag(), 101);
    for (const std::size_t behind : {0, 1}) {
        AtField cut(RawField(101, {1}) + Text("#") + Bytes(behind, 'x'));
        EXPECT_TRUE(cut->SkipValue());
        EXPECT_FALSE(cut->NextTag());
        EXPECT_EQ(cut->CurrentTag(), 101);
        EXPECT_TRUE(cut->AtEnd());
    }
}

TEST(MessageReader, SkippingStaysInsideTheFrame) {
    struct Case {
        Bytes field;
        bool skipped;
        std::size_t left;  // bytes behind the position afterwards
    };
    const Bytes cutLength = {'#', 0xE2, 0xD6, 9};
    const Case cases[] = {
        {RawField(5000, {1}), true, 0},
        {RawField(5001, {1}), true, 0},
        {RawField(45001, Bytes(16)), true, 0},
        {RawField(45001, Bytes(15)), false, 15},
        {RawField(65535, {1}), true, 1},
        {RawField(0, {1}), true, 1},
        {RawField(55010, Text("abc")), true, 0},
        {Bytes({'#', 0xE2, 0xD6, 4, 0, 'a', 'b', 'c'}), false, 3},
        {Bytes({'#', 0xE2, 0xD6, 0xFF, 0xFF, 'a', 'b', 'c'}), false, 3},
        {cutLength, true, 1},  // a length that is cut off counts as none
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(::testing::PrintToString(one.field));
        AtField reader(one.field);
        EXPECT_EQ(reader->SkipValue(), one.skipped);
        std::size_t left = 0;
        for (std::uint8_t byte; reader->Read8(byte);) {
            ++left;
        }
        EXPECT_EQ(left, one.left);
    }
}

TEST(MessageReader, ReadBytesLeavesTheTailOfALongValue) {
    Bytes value(300, 'v');
    AtField reader(RawField(55010, value) + RawField(101, {7}));
    char into[101];
    std::fill(std::begin(into), std::end(into), '?');
    EXPECT_TRUE(reader->ReadBytes(into, 100));
    EXPECT_EQ(std::string(into, 101), std::string(100, 'v') + "?");
    EXPECT_TRUE(reader->NextTag());
    EXPECT_EQ(reader->CurrentTag(), 101);
}

TEST(MessageReader, ReadsEndBehindTheirValue) {
    const Bytes field = RawField(55010, Text(std::string_view("ab\0c", 4)));
    char into[9];
    std::string text;
    AtField bytes(field + Text("z")), texts(field + Text("z"));
    EXPECT_TRUE(bytes->ReadBytes(into, 9) && texts->ReadText(text));
    for (AtField* reader : {&bytes, &texts}) {
        std::uint8_t next = 0;
        EXPECT_TRUE((*reader)->Read8(next));
        EXPECT_EQ(next, 'z');
        EXPECT_TRUE((*reader)->AtEnd());
    }
}

TEST(MessageReader, ReadBytesAndTextByLengthAndCapacity) {
    struct Case {
        Bytes field;
        std::uint16_t capacity;
        bool read;
        std::string bytes;  // of a buffer of five "?"
        bool textRead;
        std::string text;
    };
    const Bytes announcesFour = {'#', 0xE2, 0xD6, 4, 0, 'a', 'b', 'c'};
    const Case cases[] = {
        {RawField(55010, Text("abc")), 5, true, std::string("abc\0?", 5), true, "abc"},
        {RawField(55010, Text("abc")), 3, true, "abc??", true, "abc"},
        {RawField(55010, Text("abc")), 0, true, "abc??", true, "abc"},
        {RawField(55010, Bytes({'a', 0, 'c'})), 5, true, std::string("a\0c\0?", 5), true, "a"},
        {RawField(55010, {}), 5, true, std::string("\0????", 5), true, ""},
        {announcesFour, 3, true, "abc??", false, "old"},
        {announcesFour, 5, false, "?????", false, "old"},
        {Bytes({'#', 0xE2, 0xD6, 1}), 5, false, "?????", false, "old"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(::testing::PrintToString(one.field) + std::to_string(one.capacity));
        std::string into = "?????", text = "old";
        EXPECT_EQ(AtField(one.field)->ReadBytes(into.data(), one.capacity), one.read);
        EXPECT_EQ(into, one.bytes);
        EXPECT_EQ(AtField(one.field)->ReadText(text), one.textRead);
        EXPECT_EQ(text, one.text);
    }
}

TEST(MessageReader, WhatIsWrittenComesBack) {
    RandomFrames random(20260101);
    for (int round = 0; round < 20000; ++round) {
        Frame frame;
        const Bytes bytes = random.Next(frame);
        const Stream back = WalkAll(bytes);
        ASSERT_EQ(back.frames, std::vector<Frame>({frame})) << round;
        ASSERT_EQ(back.consumed, bytes.size());
    }
}

TEST(MessageReader, EveryPrefixGivesTheFramesThatAreWhole) {
    std::vector<Frame> frames;
    std::vector<std::size_t> ends;
    const Bytes stream = SomeStream(4096, frames, ends);
    std::size_t whole = 0, begin = 0;
    for (std::size_t size = 0; size <= stream.size(); ++size) {
        if (size == ends[whole]) begin = ends[whole++];
        const Bytes prefix(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(size));
        const Stream got = WalkAll(prefix);
        ASSERT_EQ(got.frames.size(), whole);
        ASSERT_TRUE(std::equal(got.frames.begin(), got.frames.end(), frames.begin()));
        ASSERT_EQ(got.last.needed, size - begin < 10 ? 0 : ends[whole] - begin) << size;
    }
}

TEST(MessageReader, FlippedBitsBehindAHeaderHarmNoOtherFrame) {
    std::vector<Frame> frames;
    std::vector<std::size_t> ends;
    const Bytes stream = SomeStream(4096, frames, ends);
    for (std::size_t index = 0, begin = 0; index + 1 < frames.size(); begin = ends[index++]) {
        const auto at = [&stream](std::size_t offset) {
            return stream.begin() + static_cast<std::ptrdiff_t>(offset);
        };
        Bytes two(at(begin), at(ends[index + 1]));
        const std::size_t size = ends[index] - begin;
        for (std::size_t bit = 0; bit < size * 8; ++bit) {
            two[bit / 8] ^= static_cast<std::uint8_t>(1u << (bit % 8));
            Fuzz::FuzzFrame(two.data(), two.size());
            if (bit / 8 >= 10) {
                CTagMessageReader damaged(two.data(), static_cast<std::uint16_t>(two.size()));
                ASSERT_EQ(damaged.Open().consumed, size);
            }
            two[bit / 8] ^= static_cast<std::uint8_t>(1u << (bit % 8));
        }
    }
}

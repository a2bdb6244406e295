// Trade record <-> frame, and the code tables.
#include <gtest/gtest.h>

#include <random>

#include "records/CodeTables.h"
#include "records/RecordText.h"
#include "records/TradeFrame.h"
#include "support/BookRig.h"
#include "support/Frames.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

// The field table walked by the writer's own appends: what the unrolled builder must equal.
Bytes PlainWalk(const TradeRecord& trade, msg::Code code, int deletedMark) {
    CTagMessageWriter writer(code);
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&trade);
    for (const TradeField& field : kTradeFields) {
        const std::uint8_t* at = bytes + field.offset;
        std::uint64_t value = 0;
        if (field.kind == FieldKind::Text) {
            writer.AppendText(field.tag, reinterpret_cast<const char*>(at), field.capacity, false);
            continue;
        }
        std::memcpy(&value, at, field.capacity);
        switch (field.capacity) {
            case 1:
                writer.AppendByte(field.tag, static_cast<std::uint8_t>(value));
                break;
            case 2:
                writer.Append16(field.tag, static_cast<std::uint16_t>(value));
                break;
            case 4:
                writer.Append32(field.tag, static_cast<std::uint32_t>(value));
                break;
            default:
                writer.Append64(field.tag, value);
                break;
        }
    }
    if (deletedMark >= 0) writer.AppendByte(tag::DeletedMark, static_cast<std::uint8_t>(deletedMark));
    return Finished(writer);
}

Bytes Built(const TradeRecord& trade, msg::Code code) {
    Bytes frame(kMaxTradeFrame);
    frame.resize(BuildTradeFrame(trade, code, frame.data()));
    return frame;
}

Bytes Stored(const TradeRecord& trade, bool deleted = false) {
    Bytes frame(kMaxTradeFrame);
    frame.resize(BuildStoredTrade(trade, deleted, frame.data()));
    return frame;
}

// The reading rules told once more, by the reader's checked reads.
// Behind a text's end the reader leaves what was there, the unrolled one zeros: nobody looks.
void ClearTails(TradeRecord& trade) {
    auto* bytes = reinterpret_cast<std::uint8_t*>(&trade);
    for (const TradeField& field : kTradeFields) {
        std::uint8_t* end = bytes + field.offset + field.capacity;
        if (field.kind == FieldKind::Text) std::fill(std::find(bytes + field.offset, end, 0), end, 0);
    }
}

template <std::size_t Count>
void PlainRead(const Bytes& frame, TradeRecord& trade) {
    CTagMessageReader reader(frame.data(), static_cast<std::uint16_t>(frame.size()));
    if (!reader.Open().opened) return;
    auto* bytes = reinterpret_cast<std::uint8_t*>(&trade);
    while (reader.NextTag()) {
        const auto field = std::find_if(kTradeFields.begin(), kTradeFields.begin() + Count,
                                        [&](const TradeField& f) { return f.tag == reader.CurrentTag(); });
        if (field == kTradeFields.begin() + Count) {
            reader.SkipValue();
            continue;
        }
        std::uint8_t* at = bytes + field->offset;
        std::uint8_t v8;
        std::uint16_t v16;
        std::uint32_t v32;
        std::uint64_t v64;
        if (field->kind == FieldKind::Text) {
            reader.ReadBytes(at, field->capacity);
        } else if (field->capacity == 1 && reader.Read8(v8)) {
            std::memcpy(at, &v8, 1);
        } else if (field->capacity == 2 && reader.Read16(v16)) {
            std::memcpy(at, &v16, 2);
        } else if (field->capacity == 4 && reader.Read32(v32)) {
            std::memcpy(at, &v32, 4);
        } else if (field->capacity == 8 && reader.Read64(v64)) {
            std::memcpy(at, &v64, 8);
        }
    }
    if (trade.productType == 0) trade.productType = 1;
}

TradeRecord HostRead(const Bytes& frame, TradeRecord trade = {}) {
    CTagMessageReader reader(frame.data(), static_cast<std::uint16_t>(frame.size()));
    if (reader.Open().opened) ReadTradeFrame(reader, trade);
    return trade;
}

StoredTradeEnd StoredRead(const Bytes& frame, TradeRecord& trade) {
    CTagMessageReader reader(frame.data(), static_cast<std::uint16_t>(frame.size()));
    return reader.Open().opened ? ReadStoredTrade(reader, trade) : StoredTradeEnd{};
}

TradeRecord HostRead(std::initializer_list<Field> fields) {
    return HostRead(RawFrame(msg::TradeFromHost, fields));
}

}  // namespace

TEST(TradeFrame, UnrolledBuilderEqualsPlainWalkAndReadsBack) {
    for (std::uint64_t seed = 0; seed < 20000; ++seed) {
        const TradeRecord trade = RandomTrade(seed);
        const bool deleted = seed % 3 == 0;
        const Bytes frame = Stored(trade, deleted);
        ASSERT_EQ(frame, PlainWalk(trade, msg::StoredTrade, deleted)) << seed;
        TradeRecord back{};
        const StoredTradeEnd end = StoredRead(frame, back);
        ASSERT_TRUE(Same(trade, back)) << seed;
        ASSERT_EQ(end.deleted, deleted);
        ASSERT_EQ(end.foreign, 0u);
    }
    for (const msg::Code code : {msg::TradeReport, msg::SecondTradeReport}) {
        EXPECT_EQ(Built(RandomTrade(code), code), PlainWalk(RandomTrade(code), code, -1));
        CTagMessageWriter writer(code);
        EXPECT_TRUE(WriteTradeFields(RandomTrade(code), writer));
        EXPECT_EQ(Finished(writer), Built(RandomTrade(code), code));
    }
}

TEST(TradeFrame, TableAgreesWithTheWidthsOfTheWire) {
    for (const TradeField& field : kTradeFields) {
        const std::uint32_t width = TagWidth(field.tag);
        EXPECT_EQ(width, field.kind == FieldKind::Text ? kVariableWidth : field.capacity) << field.tag;
    }
}

// Shuffled, cut, overlong, repeated and damaged fields: the unrolled reader must do what the plain one does.
TEST(TradeFrame, ReadsDamagedFramesAsThePlainReaderDoes) {
    std::mt19937_64 random(7);
    int parted = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes frame = Stored(RandomTrade(random()));
        for (auto hits = random() % 4; hits-- > 0;) {
            frame[15 + random() % (frame.size() - 15)] =
                static_cast<std::uint8_t>(random() % 3 ? random() : '#');
        }
        if (random() % 4 == 0)
            std::rotate(frame.begin() + 15, frame.begin() + 15 + random() % 200, frame.end());
        if (random() % 2 == 0) {
            frame.resize(15 + random() % (frame.size() - 15));
            const auto body = static_cast<std::uint16_t>(frame.size() - 10);
            std::memcpy(&frame[8], &body, 2);
        }
        TradeRecord host{}, stored{}, plainHost{}, plainStored{};
        PlainRead<kHostFields>(frame, plainHost);
        PlainRead<kTradeFields.size()>(frame, plainStored);
        // What looks like the header of a neighbour is the record file's to part.
        if (StoredRead(frame, stored).foreign > 0) plainStored = stored, ++parted;
        host = HostRead(frame);
        for (TradeRecord* trade : {&host, &stored, &plainHost, &plainStored}) {
            ClearTails(*trade);
        }
        ASSERT_TRUE(Same(host, plainHost)) << round;
        ASSERT_TRUE(Same(stored, plainStored)) << round;
    }
    EXPECT_LT(parted, 100);
}

TEST(TradeFrame, ReadingRules) {
    EXPECT_EQ(+HostRead({}).productType, 1u) << "a frame without a product type";
    EXPECT_EQ(+HostRead({{tag::ProductType, Little(0u)}}).productType, 1u);
    EXPECT_EQ(+HostRead({{tag::ProductType, Little(3u)}}).productType, 3u);

    const TradeRecord cut = HostRead({{tag::Symbol, Bytes(40, 'S')}, {tag::Side, {2}}});
    EXPECT_EQ(TextOf(cut.symbol), std::string(32, 'S')) << "cut to its capacity, without a terminator";
    EXPECT_EQ(+cut.side, 2) << "the tail of the cut text is hunted over";

    const TradeRecord kept = HostRead({{tag::NotKept, Text("#e\0#")}, {7, {1}}, {tag::OpenClose, {5}}});
    EXPECT_EQ(+kept.side, 0) << "the four bytes of an unknown value are not looked at";
    EXPECT_EQ(+kept.openClose, 5);

    Bytes shortValue = RawFrame(msg::TradeFromHost, {{tag::Side, {1}}, {tag::Quantity, Little(77u)}});
    shortValue.resize(shortValue.size() - 2);
    shortValue[8] = static_cast<std::uint8_t>(shortValue[8] - 2);
    TradeRecord before{};
    before.quantity = 5;
    EXPECT_EQ(+HostRead(shortValue, before).quantity, 5u) << "a value cut short leaves its field alone";
}

TEST(TradeFrame, OnlyTheRecordFileRestoresIdentity) {
    const TradeRecord trade = RandomTrade(99);
    TradeRecord stored{};
    StoredRead(Stored(trade), stored);
    EXPECT_TRUE(Same(stored, trade));
    const TradeRecord host = HostRead(Built(trade, msg::TradeFromHost));
    EXPECT_EQ(TextOf(host.userID).size() + host.veltTradeID + host.veltOrderID +
                  TextOf(host.exchangeTradeID).size() + TextOf(host.exchangeOrderNo).size(),
              0u);
    EXPECT_EQ(TextOf(host.symbol), TextOf(trade.symbol));
}

TEST(TradeFrame, AsksTheMasterForRecordsWithoutAnEntry) {
    struct Master : ISecurityMaster {
        SecurityMasterEntry entry{};
        std::string asked;
        const SecurityMasterEntry* Find(const TradeRecord& trade) override {
            asked += TextOf(trade.exchange);
            return &entry;
        }
    } master;
    TradeRecord trade{};
    const Bytes frame = RawFrame(msg::TradeFromHost, {{tag::Exchange, Text("NSE")}});
    for (int reads = 0; reads < 2; ++reads) {
        CTagMessageReader reader(frame.data(), static_cast<std::uint16_t>(frame.size()));
        reader.Open();
        ReadTradeFrame(reader, trade, &master);
    }
    EXPECT_TRUE(trade.security == &master.entry);
    EXPECT_EQ(master.asked, "NSE") << "asked once, when all fields were read";
}

TEST(RecordText, CutsAndFills) {
    char text[4] = {'x', 'x', 'x', 'x'};
    SetText(text, "ab");
    EXPECT_EQ(std::string(text, 4), std::string("ab\0\0", 4));
    SetText(text, "abcdef");
    EXPECT_EQ(TextOf(text), "abcd");
    SetText(text, std::string_view("a\0b", 3));
    EXPECT_EQ(std::string(text, 4), std::string("a\0\0\0", 4));
    SetText(text, std::string_view("abc\0", 4));
    EXPECT_EQ(std::string(text, 4), std::string("abc\0", 4));
    SetText(text, std::string_view(text + 1, 2));
    EXPECT_EQ(std::string(text, 4), std::string("bc\0\0", 4)) << "of its own";
    SetText(text, std::string_view("\0bcdef", 6));
    EXPECT_EQ(std::string(text, 4), std::string(4, '\0'));
    SetText(text, {});
    EXPECT_EQ(TextOf(text), "");
}

// Half a character would be shown as another one. Of a text in a code page of single bytes nothing is lost.
TEST(RecordText, CutsUtf8BetweenCharacters) {
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"abcdef", "abcd"},
        {"abc\xC3\xA9", "abc"},
        {"ab\xC3\xA9z", "ab\xC3\xA9"},
        {"ab\xE2\x82\xAC", "ab"},
        {"a\xE2\x82\xACz", "a\xE2\x82\xAC"},
        {"a\xF0\x9F\x98\x80", "a"},
        {"abc\xC3\xA9\xE9", "abc\xC3"},  // no UTF-8
        {"\xA9\xA9\xA9\xA9\xA9", "\xA9\xA9\xA9\xA9"},
        {"abc\xFC\xA9\xA9\xA9\xA9\xA9", "abc\xFC"},
        {"abc\xC3\xA9\xC3", "abc\xC3"},
    };
    for (const auto& [text, kept] : cases) {
        char field[4];
        SetText(field, text);
        EXPECT_EQ(TextOf(field), kept) << text;
    }
}

TEST(CodeTables, EveryWordThereAndBackAndTheRest) {
    const char* const kOrderTypes[] = {"Market",
                                       "Limit",
                                       "StopMarket",
                                       "StopLimit",
                                       "OCO",
                                       "MIT",
                                       "NegotiatedDealOrder",
                                       "PreOpenOrder",
                                       "MITLimit",
                                       "AuctionBuyIn",
                                       "AuctionSellOut",
                                       "AuctionTradingBuyIn",
                                       "AuctionTradingSellOut",
                                       "MultiLeg",
                                       "Spread"};
    const int kCodes[] = {1, 2, 3, 4, 11, 74, 78, 80, 82, 87, 88, 89, 90, 101, 102};
    for (std::size_t i = 0; i < std::size(kCodes); ++i) {
        EXPECT_EQ(OrderTypeFromText(kOrderTypes[i]), kCodes[i]);
        EXPECT_EQ(OrderTypeText(static_cast<std::uint8_t>(kCodes[i])), kOrderTypes[i]);
    }
    for (int code = 0; code < 256; ++code) {
        const auto c = static_cast<std::uint8_t>(code);
        const std::string_view openClose = OpenCloseText(c);
        EXPECT_EQ(OpenCloseFromText(openClose), openClose == "NONE" ? 0 : code);
        EXPECT_EQ(openClose == "NONE", code < 1 || code > 7);
        EXPECT_EQ(SideFromText(SideText(c)), code == 1 || code == 2 ? code : 0);
        EXPECT_EQ(ProductTypeFromText(ProductTypeText(c)), code >= 1 && code <= 3 ? c : 0u);
    }
    EXPECT_EQ(OpenCloseText(7), "LocalForceClose");
    EXPECT_EQ(ProductTypeText(0), "*");
    EXPECT_EQ(ProductTypeText(257), "*") << "a 32-bit code is not cut to eight bits";
    EXPECT_EQ(ProductTypeText(3), "INTRADAY");
    EXPECT_EQ(SideText(3), "Both");
    EXPECT_EQ(OrderTypeText(0), "");
    for (const char* text : {"market", "Market ", " Market", ""}) {
        EXPECT_EQ(OrderTypeFromText(text), 0) << text;
    }
}

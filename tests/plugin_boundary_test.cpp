// What the terminal sees of the plug-in: registration, dispatch, answers, callbacks, the style of boxes.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>

#include "host/HostTypes.h"
#include "message/TagReceiveQueue.h"
#include "plugin/Answers.h"
#include "plugin/HostCallbacks.h"
#include "plugin/MessageBoxStyle.h"
#include "plugin/MessageDispatch.h"
#include "plugin/Registration.h"
#include "support/Frames.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

const EntryAddresses kEntries{0x1111222233334444, 0x5555666677778888, 0x99990000AAAABBBB};

Field Wide(std::uint16_t tag, std::string_view text) {
    Field field{tag, Bytes(128)};
    for (std::size_t i = 0; i < text.size(); ++i) {
        field.value[2 * i] = static_cast<std::uint8_t>(text[i]);
    }
    return field;
}

Field Number(std::uint16_t tag, std::uint64_t value) {
    Bytes bytes = Little(value);
    bytes.resize(TagWidth(tag));
    return {tag, bytes};
}

// A frame whose codes are subscribed under the address of an entry.
Bytes Subscription(std::uint16_t code, std::uint64_t entry, std::initializer_list<std::uint16_t> codes) {
    Bytes body = RawField(10002, Little(code)) + RawField(30001, Little(entry));
    for (const std::uint16_t subscribed : codes) {
        body = body + RawField(11122, Little(subscribed));
    }
    return RawFrame(body + RawField(65535, {}));
}

const Bytes kIdentification = RawFrame(30004, {Number(20005, 1),
                                               Number(20006, 1001),
                                               {55020, Text("Dravel")},
                                               {55017, Text("Copyright (C) 2026 Dravel")},
                                               {55112, Text("VELT Dravel DLL.")},
                                               Number(5076, 0),
                                               Number(20128, 0),
                                               Number(20129, 7)});
const Bytes kBar = RawFrame(30005, {Wide(55192, "Trades"),
                                    Number(30001, kEntries.dravelBar),
                                    Number(20127, 0),
                                    Wide(55353, "Dravel"),
                                    Number(5029, 0),
                                    {65535, {}}});
const Bytes kSubscriptions =
    Subscription(30006, kEntries.onMessage, {113, 127, 128, 270, 271}) +
    Subscription(30007, kEntries.onPluginMessage, {32042, 32051, 30020, 30025, 30024}) +
    Subscription(30008, kEntries.onPluginMessage, {30013});

Bytes Registered(CTagReceiveQueue&& queue, std::uint8_t flag) {
    AppendRegistration(queue, flag, kEntries);
    return Bytes(queue.Unread(), queue.Unread() + queue.Count());
}

class Calls : public IPluginHandlers {
 public:
    void ShowBar() override { made += "bar "; }
    void SelectedContract(CTagMessageReader& query) override { made += "contract " + Next(query); }
    void TradeFromHost(CTagMessageReader& trade) override { made += "trade " + Next(trade); }
    void EntryQuery() override { made += "entry "; }
    void PendingItems() override { made += "pending "; }
    void AskToSave() override { made += "ask "; }
    std::string made;

 private:
    static std::string Next(CTagMessageReader& reader) {
        return reader.NextTag() ? std::to_string(reader.CurrentTag()) : "nothing";
    }
};

SelectedContractReply seen;
Bytes seenData;
void TakeReply(SelectedContractReply* reply) {
    seen = *reply;
    seenData.assign(reply->data, reply->data + reply->length);
    reply->buffer = static_cast<std::uint8_t*>(std::malloc(16));  // a leak when the plug-in does not free it
}

void Nothing() {}
std::string lookedUp;

}  // namespace

TEST(Registration, FramesByteByByte) {
    EXPECT_EQ(Registered(CTagReceiveQueue(1, true), 0), kIdentification + kBar + kSubscriptions);
    EXPECT_EQ(Registered(CTagReceiveQueue(1, true), 1), kIdentification);
    EXPECT_EQ(Registered(CTagReceiveQueue(1, true), 255), kIdentification);
}

TEST(Registration, FullQueueDropsAFrameAndTakesTheRest) {
    const auto room = static_cast<std::uint32_t>(kIdentification.size() + kSubscriptions.size());
    EXPECT_EQ(Registered(CTagReceiveQueue(room, false), 0), kIdentification + kSubscriptions);
    EXPECT_EQ(Registered(CTagReceiveQueue(10, false), 0), Bytes());
}

TEST(Registration, OptionBlockGoesInFrontOfTheEndMark) {
    CTagMessageWriter frame(msg::BarRegistration);
    const BarOptions options = {1, 2, 3, 4};
    BuildBarRegistration(frame, kEntries.dravelBar, &options);
    Bytes expected(kBar.begin() + 10, kBar.end() - 3);
    expected =
        expected + RawField(5064, {1}) + RawField(5065, {2}) + RawField(5066, {3}) + RawField(126, {4});
    EXPECT_EQ(Finished(frame), RawFrame(expected + RawField(65535, {})));
}

TEST(Dispatch, BroadcastsConsumeTheirFieldsOthersOneValue) {
    const Bytes rest = RawField(101, {1}) + RawField(55010, Text("x"));
    const std::map<std::uint16_t, bool> consumed = {{113, true},  {127, true},  {270, true},   {30026, true},
                                                    {128, false}, {271, false}, {32042, false}};
    for (const auto& [code, all] : consumed) {
        // The current field is the message code, so that the value stepped over is the two stray bytes.
        const Bytes frame = RawFrame(RawField(10002, Little(code)) + Text("zz") + rest);
        CTagMessageReader reader(frame.data(), static_cast<std::uint16_t>(frame.size()));
        ASSERT_TRUE(reader.Open().opened);
        DispatchBroadcast(reader);
        std::size_t left = 0;
        for (std::uint8_t byte; reader.Read8(byte);) {
            ++left;
        }
        EXPECT_EQ(left, all ? 0 : rest.size()) << code;
    }
}

TEST(Dispatch, PluginMessagesReachTheirHandlers) {
    const std::pair<Bytes, const char*> cases[] = {
        {RawFrame(32042, {}), "bar "},
        {RawFrame(32022, {Number(30002, 5)}), "contract 30002"},
        {RawFrame(32051, {{101, {1}}}), "trade 101"},
        {Text("strays") + RawFrame(32051, {}), "trade nothing"},
        {RawFrame(30025, {}), "entry "},
        {RawFrame(30020, {}), "pending "},
        {RawFrame(30024, {}), "ask "},
        {RawFrame(30012, {{101, {1}}}), ""},
        {RawFrame(30014, {{101, {1}}}), ""},
        {RawFrame(30013, {}), ""},
        {Bytes({'#', 1}), ""},
        {Bytes(kBar.begin(), kBar.end() - 1), ""},
    };
    for (const auto& [frame, made] : cases) {
        CTagMessageReader reader(frame.data(), static_cast<std::uint16_t>(frame.size()));
        Calls calls;
        DispatchPluginMessage(reader, calls);
        EXPECT_EQ(calls.made, made);
    }
}

TEST(Answers, SelectedContractTravelsCutToItsCapacities) {
    const std::string exchange(60, 'e'), security(49, 's'), client(21, 'c');
    const Bytes nothing = RawFrame(32023, {});
    const auto row = [](double value) {
        return RawFrame(32023,
                        {{55010, Text("NSE")}, {55104, Text("26000")}, {55102, {}}, {40002, Little(value)}});
    };
    const std::pair<SelectedCells, Bytes> cases[] = {
        {{"NSE", "26000", "", "24010.5"}, row(24010.5)},
        {{"NSE", "26000", "", " -3 lots"}, row(-3)},
        {{"NSE", "26000", "", ""}, row(0)},
        {{"NSE", "", "C1", "1"}, nothing},
        {{"", "26000", "C1", "1"}, nothing},
        {{exchange, security, client, "1e300"},
         RawFrame(32023, {{55010, Text(exchange.substr(0, 48))},
                          {55104, Text(security.substr(0, 48))},
                          {55102, Text(client.substr(0, 20))},
                          {40002, Little(1e300)}})},
    };
    for (const auto& [cells, expected] : cases) {
        CTagMessageWriter frame(msg::SelectedContractAnswer);
        BuildSelectedContract(frame, &cells);
        EXPECT_EQ(Finished(frame), expected) << cells.price;
    }
    CTagMessageWriter bare(msg::SelectedContractAnswer);
    BuildSelectedContract(bare, nullptr);
    EXPECT_EQ(Finished(bare), nothing);
}

TEST(Answers, ReplyGoesToTheAddressOfTheQuery) {
    const std::pair<Bytes, std::uint64_t> queries[] = {
        {RawFrame(32022, {Number(30002, 0x1122334455667788)}), 0x1122334455667788},
        {RawFrame(32022, {Number(30002, 0)}), 0},
        {RawFrame(32022, {Number(30001, 5), Number(30002, 5)}), 0},
        {RawFrame(32022, {}), 0},
        {RawFrame(RawField(10002, Little<std::uint16_t>(32022)) + Text("#\x32\x75\x01")), 0},
    };
    for (const auto& [query, address] : queries) {
        CTagMessageReader reader(query.data(), static_cast<std::uint16_t>(query.size()));
        ASSERT_TRUE(reader.Open().opened);
        EXPECT_EQ(ReplyAddress(reader), address);
    }
    CTagMessageWriter frame(msg::SelectedContractAnswer);
    Reply(reinterpret_cast<std::uintptr_t>(&TakeReply), frame);
    EXPECT_EQ(seenData, RawFrame(32023, {}));
    EXPECT_EQ(seen.zero, 0u);
    EXPECT_EQ(seen.zero32, 0u);
    EXPECT_EQ(seen.buffer, nullptr);
}

TEST(Answers, TheEntryIsAnnounced) {
    CTagMessageWriter entry(msg::EntryAnnouncement);
    BuildEntryAnnouncement(entry, 7);
    EXPECT_EQ(Finished(entry), RawFrame(30011, {Number(30001, 7)}));
}

TEST(HostCallbacks, AreLookedUpOnceInOrderAndMayBeMissing) {
    const HostCallbacks none([](const char* name) -> HostCallbacks::Function {
        lookedUp += std::string(name) + " ";
        return nullptr;
    });
    EXPECT_EQ(
        lookedUp,
        "GetMasterRequest SendToAccess PluginDataSend SendToDataFeed SendDepthBroadCastRequest "
        "SendWatchBroadCastRequest SendIndexBroadCastRequest GetOrderNo GetDepth ApplicationFocus OnMessage "
        "IsVELTSLogin GetPluginBarID SetPluginBarName PluginRemoveBarID TERBCastRequest PasswordVerification "
        "ModifyOrderQtyCheck M2MDisplay ");
    EXPECT_EQ(none.GetMasterRequest(), nullptr);
    EXPECT_EQ(none.GetPluginBarID(), nullptr);
    const HostCallbacks one([](const char* name) -> HostCallbacks::Function {
        return std::string_view(name) == "PluginDataSend" ? &Nothing : nullptr;
    });
    EXPECT_EQ(reinterpret_cast<HostCallbacks::Function>(one.PluginDataSend()), &Nothing);
    EXPECT_EQ(one.ApplicationFocus(), nullptr);
    EXPECT_EQ(one.OnMessage(), nullptr);
}

TEST(MessageBoxStyle, AddsItsParts) {
    const std::uint32_t buttons[] = {0, 4, 1, 5, 2, 6, 3, 256, 0};
    const std::uint32_t icons[] = {16, 48, 32, 64, 128, 0, 112, 0};
    for (std::uint32_t set = 0; set < std::size(buttons); ++set) {
        EXPECT_EQ(MessageBoxStyle(set, 5, 0, false), buttons[set]) << set;
    }
    for (std::uint32_t icon = 0; icon < std::size(icons); ++icon) {
        EXPECT_EQ(MessageBoxStyle(0, icon, 0, false), icons[icon]) << icon;
    }
    EXPECT_EQ(MessageBoxStyle(6, 2, 0x100, true), 3u + 32 + 0x100 + 0x80000);
}

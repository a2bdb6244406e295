#include "plugin/Registration.h"

#include <initializer_list>
#include <string_view>

#include "message/FieldBytes.h"
#include "message/TagMessageWriter.h"
#include "message/TagReceiveQueue.h"
#include "message/Tags.h"
#include "plugin/Product.h"

namespace Dravel {

namespace {

constexpr std::size_t kWideBlock = 128;  // bytes; a wide text has a block of this size whatever its length

constexpr msg::Code kBroadcasts[] = {msg::Broadcast113, msg::Broadcast127, msg::Broadcast128,
                                     msg::Broadcast270, msg::Broadcast271};
constexpr msg::Code kPluginMessages[] = {msg::ShowBar, msg::TradeFromHost, msg::PendingItems, msg::EntryQuery,
                                         msg::AskToSave};
constexpr msg::Code kExtraMessages[] = {msg::Plugin30013};

constexpr tag::Tag kOptionTags[] = {tag::BarOption1, tag::BarOption2, tag::BarOption3, tag::BarOption4};
static_assert(std::size(kOptionTags) == std::tuple_size_v<BarOptions>);

void AppendBlock(CTagMessageWriter& frame, tag::Tag tag, std::u16string_view text) {
    std::uint8_t block[kWideBlock] = {};
    std::uint8_t* at = block;
    for (const char16_t unit : text.substr(0, kWideBlock / sizeof(char16_t))) {
        at = wire::Put(at, unit);
    }
    frame.AppendBytes(tag, block, kWideBlock);
}

void AppendUnlessEmpty(CTagMessageWriter& frame, tag::Tag tag, std::string_view text) {
    if (!text.empty()) frame.AppendBytes(tag, text.data(), static_cast<std::uint16_t>(text.size()));
}

void Hand(CTagReceiveQueue& queue, CTagMessageWriter& frame) {
    queue.Append(frame.GetData(), frame.GetLength());
}

void AppendIdentification(CTagReceiveQueue& queue) {
    CTagMessageWriter frame(msg::Identification);
    frame.Append32(tag::InfoVersion, 1);
    frame.Append32(tag::InfoBuild, 1001);
    AppendUnlessEmpty(frame, tag::DisplayName, product::kDisplayName);
    AppendUnlessEmpty(frame, tag::Copyright, product::kCopyright);
    frame.AppendBytes(tag::Description, product::kDescription.data(), product::kDescription.size());
    frame.AppendByte(tag::InfoFlag, 0);
    frame.Append32(tag::InfoValue1, 0);
    frame.Append32(tag::InfoValue2, 7);
    Hand(queue, frame);
}

void AppendBar(CTagReceiveQueue& queue, std::uint64_t dravelBar) {
    CTagMessageWriter frame(msg::BarRegistration);
    BuildBarRegistration(frame, dravelBar, nullptr);
    Hand(queue, frame);
}

template <std::size_t Count>
void AppendSubscription(CTagReceiveQueue& queue, msg::Code code, std::uint64_t entry,
                        const msg::Code (&subscribed)[Count]) {
    CTagMessageWriter frame(code);
    frame.Append64(tag::Entry, entry);
    for (const msg::Code wanted : subscribed) {
        frame.Append16(tag::SubscribedCode, wanted);
    }
    frame.AppendEndMark();
    Hand(queue, frame);
}

}  // namespace

void BuildBarRegistration(CTagMessageWriter& frame, std::uint64_t dravelBar, const BarOptions* options) {
    AppendBlock(frame, tag::BarGroup, product::kBarGroup);
    frame.Append64(tag::Entry, dravelBar);
    frame.Append32(tag::BarValue, 0);
    AppendBlock(frame, tag::BarName, product::kWideDisplayName);
    frame.AppendByte(tag::BarFlag, 0);
    for (std::size_t i = 0; options != nullptr && i < options->size(); ++i) {
        frame.AppendByte(kOptionTags[i], (*options)[i]);
    }
    frame.AppendEndMark();
}

void AppendRegistration(CTagReceiveQueue& queue, std::uint8_t flag, const EntryAddresses& entries) {
    AppendIdentification(queue);
    if (flag != 0) return;
    AppendBar(queue, entries.dravelBar);
    AppendSubscription(queue, msg::BroadcastSubscription, entries.onMessage, kBroadcasts);
    AppendSubscription(queue, msg::PluginSubscription, entries.onPluginMessage, kPluginMessages);
    AppendSubscription(queue, msg::ExtraSubscription, entries.onPluginMessage, kExtraMessages);
}

}  // namespace Dravel

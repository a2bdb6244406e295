#include "plugin/Answers.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "host/HostTypes.h"
#include "message/TagMessageReader.h"
#include "message/TagMessageWriter.h"
#include "message/Tags.h"
#include "platform/ForeignCall.h"

namespace Dravel {

namespace {

constexpr std::size_t kExchangeCapacity = 48, kSecurityCapacity = 48, kClientCapacity = 20;

void AppendCell(CTagMessageWriter& frame, tag::Tag tag, std::string_view text, std::size_t capacity) {
    frame.AppendBytes(tag, text.data(), static_cast<std::uint16_t>(std::min(text.size(), capacity)));
}

// The number at the start of a cell; 0 when there is none.
double NumberOf(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    double number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    return parsed.ec == std::errc() ? number : 0;
}

}  // namespace

std::uint64_t ReplyAddress(CTagMessageReader& query) {
    std::uint64_t address = 0;
    const bool given = query.NextTag() && query.CurrentTag() == tag::EntryOrReply && query.Read64(address);
    return given ? address : 0;
}

void BuildSelectedContract(CTagMessageWriter& frame, const SelectedCells* row) {
    if (row == nullptr || row->exchange.empty() || row->securityID.empty()) return;
    AppendCell(frame, tag::Exchange, row->exchange, kExchangeCapacity);
    AppendCell(frame, tag::SecurityID, row->securityID, kSecurityCapacity);
    AppendCell(frame, tag::ClientID, row->clientID, kClientCapacity);
    frame.AppendDouble(tag::Price, NumberOf(row->price));
}

bool Reply(std::uint64_t address, CTagMessageWriter& frame) {
    SelectedContractReply reply{};
    reply.data = frame.GetData();
    reply.length = frame.GetLength();
    const auto function =
        reinterpret_cast<void (*)(SelectedContractReply*)>(static_cast<std::uintptr_t>(address));
    if (!CallForeign([&] { function(&reply); }).returned) return false;
    std::free(reply.buffer);  // the terminal made it as an array, on the heap that both share
    return true;
}

void BuildEntryAnnouncement(CTagMessageWriter& frame, std::uint64_t onPluginMessage) {
    frame.Append64(tag::Entry, onPluginMessage);
}

}  // namespace Dravel

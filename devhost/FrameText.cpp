// Walks frames with the plug-in's own reader and builds them with its own writer; the names come from one
// table each.
#include "FrameText.h"

#include <algorithm>
#include <cstring>

#include "Text.h"
#include "message/TagMessageReader.h"
#include "message/TagMessageWriter.h"
#include "message/Tags.h"

namespace Dravel::DevHost {
namespace {

struct Name {
    std::uint16_t number;
    const char* text;
};

constexpr Name kCodes[] = {
    {msg::Identification, "Identification"},
    {msg::BarRegistration, "BarRegistration"},
    {msg::BroadcastSubscription, "BroadcastSubscription"},
    {msg::PluginSubscription, "PluginSubscription"},
    {msg::ExtraSubscription, "ExtraSubscription"},
    {msg::ShowBar, "ShowBar"},
    {msg::SelectedContract, "SelectedContract"},
    {msg::EntryQuery, "EntryQuery"},
    {msg::TradeFromHost, "TradeFromHost"},
    {msg::PendingItems, "PendingItems"},
    {msg::AskToSave, "AskToSave"},
    {msg::SelectedContractAnswer, "SelectedContractAnswer"},
    {msg::EntryAnnouncement, "EntryAnnouncement"},
    {msg::TradeReport, "TradeReport"},
    {msg::SecondTradeReport, "SecondTradeReport"},
    {msg::ImportFinished, "ImportFinished"},
    {msg::ManualClient, "ManualClient"},
    {msg::StoredTrade, "StoredTrade"},
};

constexpr Name kTags[] = {
    {tag::Entry, "Entry"},
    {tag::EntryOrReply, "EntryOrReply"},
    {tag::SubscribedCode, "SubscribedCode"},
    {tag::InfoVersion, "InfoVersion"},
    {tag::InfoBuild, "InfoBuild"},
    {tag::InfoFlag, "InfoFlag"},
    {tag::InfoValue1, "InfoValue1"},
    {tag::InfoValue2, "InfoValue2"},
    {tag::DisplayName, "DisplayName"},
    {tag::Copyright, "Copyright"},
    {tag::Description, "Description"},
    {tag::BarGroup, "BarGroup"},
    {tag::BarName, "BarName"},
    {tag::BarValue, "BarValue"},
    {tag::BarFlag, "BarFlag"},
    {tag::ManagerID, "ManagerID"},
    {tag::ExchangeTradeTime, "ExchangeTradeTime"},
    {tag::OrderID, "OrderID"},
    {tag::OrderTime, "OrderTime"},
    {tag::ExchangeOrderTime, "ExchangeOrderTime"},
    {tag::Exchange, "Exchange"},
    {tag::SecurityID, "SecurityID"},
    {tag::SecurityType, "SecurityType"},
    {tag::Symbol, "Symbol"},
    {tag::ExpiryDate, "ExpiryDate"},
    {tag::OptionType, "OptionType"},
    {tag::StrikePrice, "StrikePrice"},
    {tag::Side, "Side"},
    {tag::OrderType, "OrderType"},
    {tag::Quantity, "Quantity"},
    {tag::PendingQuantity, "PendingQuantity"},
    {tag::Price, "Price"},
    {tag::ProductType, "ProductType"},
    {tag::OpenClose, "OpenClose"},
    {tag::ClientID, "ClientID"},
    {tag::MemberID, "MemberID"},
    {tag::CTCLID, "CTCLID"},
    {tag::ReferenceText, "ReferenceText"},
    {tag::TerminalInfo, "TerminalInfo"},
    {tag::Pan, "Pan"},
    {tag::UserID, "UserID"},
    {tag::VELTTradeID, "VELTTradeID"},
    {tag::VELTOrderID, "VELTOrderID"},
    {tag::ExchangeTradeID, "ExchangeTradeID"},
    {tag::ExchangeOrderNo, "ExchangeOrderNo"},
    {tag::DeletedMark, "DeletedMark"},
    {tag::EndMark, "end"},
};

template <std::size_t N>
std::string NameIn(const Name (&table)[N], std::uint16_t number) {
    for (const Name& name : table)
        if (name.number == number) return name.text;
    return NumberText(number);
}

template <std::size_t N>
bool NumberIn(const Name (&table)[N], std::string_view text, std::uint16_t& number) {
    for (const Name& name : table)
        if (text == name.text) return number = name.number, true;
    return ParseNumber(text, number);
}

bool IsDouble(std::uint16_t number) {
    return number == tag::StrikePrice || number == tag::Price;
}
bool IsWideBlock(std::uint16_t number) {
    return number == tag::BarGroup || number == tag::BarName;
}

std::string HexNumber(std::uint64_t value) {
    char buffer[32];
    return "0x" + std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, value, 16).ptr);
}

// A fixed block of UTF-16 up to its first zero.
std::string BlockText(std::string_view bytes) {
    std::wstring text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        wchar_t c = 0;
        std::memcpy(&c, bytes.data() + i, 2);
        if (!c) break;
        text += c;
    }
    return Narrow(text) + " (" + NumberText(bytes.size()) + " bytes)";
}

bool ReadVariable(CTagMessageReader& reader, std::uint16_t number, std::string& value) {
    if (!IsWideBlock(number)) return reader.ReadText(value);
    // Long enough for the block; what is longer is not one.
    char block[128] = {};
    if (!reader.ReadBytes(block, sizeof block)) return false;
    value = BlockText({block, sizeof block});
    return true;
}

template <class Number>
bool ReadNumber(CTagMessageReader& reader, bool (CTagMessageReader::*read)(Number&), std::string& value) {
    Number number{};
    if (!(reader.*read)(number)) return false;
    value = NumberText(number);
    return true;
}

bool ReadValue(CTagMessageReader& reader, std::string& value) {
    const std::uint16_t number = reader.CurrentTag();
    switch (TagWidth(number)) {
        case 0:
            return true;
        case 1:
            return ReadNumber(reader, &CTagMessageReader::Read8, value);
        case 2:
            return ReadNumber(reader, &CTagMessageReader::Read16, value);
        case 4:
            return ReadNumber(reader, &CTagMessageReader::Read32, value);
        case 8:
            break;
        case kVariableWidth:
            return ReadVariable(reader, number, value);
        default:
            return reader.SkipValue();
    }
    if (IsDouble(number)) return ReadNumber(reader, &CTagMessageReader::ReadDouble, value);
    std::uint64_t bits = 0;
    if (!reader.Read64(bits)) return false;
    value = HexNumber(bits);
    return true;
}

CTagMessageReader ReaderOf(std::string_view frame) {
    return CTagMessageReader(frame.data(),
                             static_cast<std::uint16_t>(std::min<std::size_t>(frame.size(), 0xFFFF)));
}

bool Parse64(std::string_view text, std::uint64_t replyAddress, std::uint64_t& value) {
    if (text == "@reply") return value = replyAddress, true;
    if (text.starts_with("0x")) return ParseHex(text.substr(2), value);
    return ParseNumber(text, value);
}

bool AppendField(CTagMessageWriter& frame, std::uint16_t number, const std::string& text,
                 std::uint64_t replyAddress) {
    std::uint64_t value = 0;
    double real = 0;
    const std::uint32_t width = TagWidth(number);
    if (width == kVariableWidth)
        return frame.AppendText(number, text.c_str(),
                                static_cast<std::uint16_t>(std::min<std::size_t>(text.size(), 0xFFFF)), true);
    if (IsDouble(number)) return ParseNumber(text, real) && frame.AppendDouble(number, real);
    if (!Parse64(text, replyAddress, value)) return false;
    switch (width) {
        case 1:
            return frame.AppendByte(number, static_cast<std::uint8_t>(value));
        case 2:
            return frame.Append16(number, static_cast<std::uint16_t>(value));
        case 4:
            return frame.Append32(number, static_cast<std::uint32_t>(value));
        case 8:
            return frame.Append64(number, value);
        default:
            return false;
    }
}

}  // namespace

std::string CodeName(std::uint16_t code) {
    return NameIn(kCodes, code);
}
std::string TagName(std::uint16_t number) {
    return NameIn(kTags, number);
}
bool ParseCode(std::string_view text, std::uint16_t& code) {
    return NumberIn(kCodes, text, code);
}
bool ParseTag(std::string_view text, std::uint16_t& number) {
    return NumberIn(kTags, text, number);
}

std::vector<FieldText> Fields(std::string_view frame) {
    std::vector<FieldText> fields;
    CTagMessageReader reader = ReaderOf(frame);
    if (!reader.Open().opened) return {{0, "unreadable frame", Hex(frame.substr(0, 64))}};
    while (reader.NextTag()) {
        FieldText field{reader.CurrentTag(), TagName(reader.CurrentTag()), {}};
        if (!ReadValue(reader, field.value)) field.value = "(cut short)";
        fields.push_back(std::move(field));
    }
    return fields;
}

std::string FieldLine(std::string_view frame) {
    std::string line;
    for (const FieldText& field : Fields(frame)) {
        if (!line.empty()) line += ", ";
        line += field.name;
        if (TagWidth(field.tag)) line += '=' + field.value;
    }
    return line;
}

std::string Hex(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (unsigned char byte : bytes) {
        if (!hex.empty()) hex += ' ';
        hex += kDigits[byte >> 4];
        hex += kDigits[byte & 15];
    }
    return hex;
}

std::uint16_t CodeOf(std::string_view frame) {
    CTagMessageReader reader = ReaderOf(frame);
    reader.Open();
    return reader.MessageCode();
}

std::vector<std::string_view> SplitFrames(std::string_view frames) {
    std::vector<std::string_view> split;
    while (!frames.empty()) {
        const std::uint32_t consumed = ReaderOf(frames).Open().consumed;
        split.push_back(frames.substr(0, consumed ? consumed : frames.size()));
        frames.remove_prefix(split.back().size());
    }
    return split;
}

std::unique_ptr<CTagMessageWriter> BuildFrame(std::uint16_t code, const std::vector<std::string>& fields,
                                              std::uint64_t replyAddress, std::string& error) {
    auto frame = std::make_unique<CTagMessageWriter>(code);
    for (const std::string& field : fields) {
        const auto equals = field.find('=');
        std::uint16_t number = 0;
        if (!ParseTag(field.substr(0, equals), number)) return error = "unknown field " + field, nullptr;
        if (number == tag::EndMark) {
            frame->AppendEndMark();
            continue;
        }
        if (equals == std::string::npos ||
            !AppendField(*frame, number, field.substr(equals + 1), replyAddress))
            return error = "field " + field + " has no such value", nullptr;
    }
    return frame;
}

}  // namespace Dravel::DevHost

// Keys and values of the settings store.
#include "tradebook/base/VELTPXMLSettings.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "formatset/NumberText.h"
#include "formatset/TextFile.h"
#include "tradebook/base/VELTPXMLText.h"

namespace {

constexpr char kHexDigits[] = "0123456789abcdef";

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The whole of `text` as a decimal number.
template <class Number>
bool ReadWhole(std::string_view text, Number& value) {
    Number read = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), read);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size()) return false;
    value = read;
    return true;
}

// Cuts the first level off a key path.
std::string_view TakeLevel(std::string_view& key) {
    const std::size_t end = std::min(key.find('\\'), key.size());
    const std::string_view level = key.substr(0, end);
    key.remove_prefix(std::min(end + 1, key.size()));
    return level;
}

void LayNodeOver(CVELTPXMLNode& below, const CVELTPXMLNode& changes) {
    for (const auto& change : changes.Children()) {
        CVELTPXMLNode* known = below.Find(change->Name());
        if (known == nullptr) known = &below.Append(change->Name());
        if (!change->Children().empty()) {
            if (known->Value().empty()) LayNodeOver(*known, *change);
        } else if (known->Children().empty()) {
            known->SetValue(change->Value());
        }
    }
}

}  // namespace

CVELTPXMLNode* CVELTPXMLNode::Find(std::string_view name) const {
    const auto found = std::find_if(children_.begin(), children_.end(),
                                    [name](const auto& child) { return child->name_ == name; });
    return found == children_.end() ? nullptr : found->get();
}

CVELTPXMLNode& CVELTPXMLNode::Append(std::string name) {
    value_.clear();
    return *children_.emplace_back(std::make_unique<CVELTPXMLNode>(std::move(name)));
}

CVELTPXMLSettings::CVELTPXMLSettings(Hive hive)
    : hive_(hive),
      localMachine_(std::make_unique<CVELTPXMLNode>("LOCAL_MACHINE")),
      currentUser_(std::make_unique<CVELTPXMLNode>(std::string(VELTPXMLText::kRootName))) {}

bool CVELTPXMLSettings::Open(std::string_view key) {
    CVELTPXMLNode* node = &Root();
    while (node != nullptr && !key.empty()) {
        const std::string level = VELTPXMLText::WithoutBlanks(TakeLevel(key));
        if (!level.empty()) node = node->Find(level);
    }
    current_ = node;
    return node != nullptr;
}

bool CVELTPXMLSettings::CreateKey(std::string_view key) {
    if (readOnly_) return false;
    std::vector<std::string> levels;
    while (!key.empty()) {
        std::string level = VELTPXMLText::WithoutBlanks(TakeLevel(key));
        if (level.empty()) continue;
        if (!VELTPXMLText::IsName(level)) return false;
        levels.push_back(std::move(level));
    }
    if (levels.empty() || levels.size() >= kMaxDepth) return false;  // its values need a level, too
    CVELTPXMLNode* node = &Root();
    for (std::string& level : levels) {
        CVELTPXMLNode* child = node->Find(level);
        node = child != nullptr ? child : &node->Append(std::move(level));
    }
    current_ = node;
    return true;
}

bool CVELTPXMLSettings::WriteText(std::string_view name, std::string_view text) {
    if (readOnly_ || current_ == nullptr) return false;
    std::string element = VELTPXMLText::WithoutBlanks(name);
    if (!VELTPXMLText::IsName(element)) return false;
    CVELTPXMLNode* node = current_->Find(element);
    if (node == nullptr) node = &current_->Append(std::move(element));
    if (!node->Children().empty()) return false;
    node->SetValue(text);
    return true;
}

bool CVELTPXMLSettings::WriteInteger(std::string_view name, std::int32_t value) {
    Dravel::NumberBuffer buffer;
    return WriteText(name, Dravel::IntegerText(value, buffer));
}

bool CVELTPXMLSettings::WriteColour(std::string_view name, std::uint32_t colour) {
    Dravel::NumberBuffer buffer;
    return WriteText(name, Dravel::UnsignedText(colour, buffer));
}

bool CVELTPXMLSettings::WriteBinary(std::string_view name, std::span<const std::uint8_t> bytes) {
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes) {
        text += kHexDigits[byte >> 4];
        text += kHexDigits[byte & 15];
    }
    return WriteText(name, text);
}

const std::string* CVELTPXMLSettings::Find(std::string_view name) const {
    if (current_ == nullptr) return nullptr;
    const CVELTPXMLNode* node = current_->Find(VELTPXMLText::WithoutBlanks(name));
    return node != nullptr && node->Children().empty() ? &node->Value() : nullptr;
}

bool CVELTPXMLSettings::ReadText(std::string_view name, std::string& text) const {
    const std::string* value = Find(name);
    if (value != nullptr) text = *value;
    return value != nullptr;
}

bool CVELTPXMLSettings::ReadInteger(std::string_view name, std::int32_t& value) const {
    const std::string* text = Find(name);
    return text != nullptr && ReadWhole(*text, value);
}

bool CVELTPXMLSettings::ReadColour(std::string_view name, std::uint32_t& colour) const {
    const std::string* text = Find(name);
    return text != nullptr && ReadWhole(*text, colour);
}

bool CVELTPXMLSettings::ReadBinary(std::string_view name, std::vector<std::uint8_t>& bytes) const {
    const std::string* text = Find(name);
    if (text == nullptr) return false;
    std::vector<std::uint8_t> read;
    read.reserve(text->size() / 2);
    // A single digit at the end meets the text's closing zero, which is no digit.
    for (std::size_t i = 0; i < text->size(); i += 2) {
        const int high = HexValue((*text)[i]), low = HexValue((*text)[i + 1]);
        if (high < 0 || low < 0) return false;
        read.push_back(static_cast<std::uint8_t>(high << 4 | low));
    }
    bytes = std::move(read);
    return true;
}

bool CVELTPXMLSettings::LoadFile(Dravel::IFiles& files, const std::filesystem::path& path) {
    std::string text;
    return Dravel::ReadTextFile(files, path, text) && LoadTextForm(text);
}

bool CVELTPXMLSettings::SaveFile(Dravel::IFiles& files, const std::filesystem::path& path) const {
    const std::string text = TextForm();
    return text.empty() || Dravel::WriteTextFile(files, path, text);
}

bool CVELTPXMLSettings::LoadTextForm(std::string_view text) {
    std::unique_ptr<CVELTPXMLNode> root = VELTPXMLText::Read(text, kMaxDepth);
    if (root == nullptr) return false;
    currentUser_ = std::move(root);
    current_ = nullptr;
    return true;
}

bool CVELTPXMLSettings::IsWhole(std::string_view text) {
    const std::string end = "</" + std::string(VELTPXMLText::kRootName) + ">";
    const std::size_t last = text.find_last_not_of(" \t\r\n");
    return last != text.npos && text.substr(0, last + 1).ends_with(end);
}

void CVELTPXMLSettings::LayOver(const CVELTPXMLSettings& changes) {
    LayNodeOver(*currentUser_, *changes.currentUser_);
    current_ = nullptr;
}

std::string CVELTPXMLSettings::TextForm() const {
    return VELTPXMLText::Write(*currentUser_);
}

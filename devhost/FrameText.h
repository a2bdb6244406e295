// Frames as text: names of codes and tags, fields by name; and frames out of a script's words.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class CTagMessageWriter;

namespace Dravel::DevHost {

struct FieldText {
    std::uint16_t tag = 0;
    std::string name;  // the tag's name, its number when it has none
    std::string value;
};

std::string CodeName(std::uint16_t code);
std::string TagName(std::uint16_t tag);
// False when the text is neither a number nor a known name.
bool ParseCode(std::string_view text, std::uint16_t& code);
bool ParseTag(std::string_view text, std::uint16_t& tag);

// The fields behind the message code. A frame that cannot be read gives one field that says so.
std::vector<FieldText> Fields(std::string_view frame);
// "Symbol=..., Price=..." on one line.
std::string FieldLine(std::string_view frame);
std::string Hex(std::string_view bytes);
std::uint16_t CodeOf(std::string_view frame);
// Frames that stand one behind the other; what is left of an incomplete one is the last.
std::vector<std::string_view> SplitFrames(std::string_view frames);

// A frame of `code` with the fields "NAME=value" (NAME a tag's name or number; "end" is the end mark). Values
// of 8-byte fields may be hexadecimal after "0x", "@reply" stands for `replyAddress`. nullptr, with `error`
// set, when a field cannot be understood.
std::unique_ptr<CTagMessageWriter> BuildFrame(std::uint16_t code, const std::vector<std::string>& fields,
                                              std::uint64_t replyAddress, std::string& error);

}  // namespace Dravel::DevHost

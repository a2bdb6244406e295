// The text form of a tree of settings. Its rules stand in docs/settings.md.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

class CVELTPXMLNode;

namespace VELTPXMLText {

// The outermost element of a file.
inline constexpr std::string_view kRootName = "CURRENT_USER";
// Longer names are none of ours.
inline constexpr std::size_t kMaxName = 255;

std::string WithoutBlanks(std::string_view name);
// Whether an element may have this name: not empty, no longer than kMaxName, none of < > " CR LF, no "/" in
// front.
bool IsName(std::string_view name);

// Empty when the node has no children.
std::string Write(const CVELTPXMLNode& root);
// nullptr when `text` has no outermost element. Time and memory are bounded by the text's length, whatever it
// holds.
std::unique_ptr<CVELTPXMLNode> Read(std::string_view text, std::size_t maxDepth);

}  // namespace VELTPXMLText

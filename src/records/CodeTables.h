// The words for the numeric codes of a trade. Compared exactly, with case, untrimmed.
#pragma once

#include <cstdint>
#include <string_view>

namespace Dravel {

namespace side {
inline constexpr std::uint8_t Buy = 1, Sell = 2;
}
namespace product {
inline constexpr std::uint32_t Normal = 1, Delivery = 2, Intraday = 3;
}

// From text: 0 when no word matches.
std::uint8_t OrderTypeFromText(std::string_view text);
std::uint8_t SideFromText(std::string_view text);
std::uint8_t OpenCloseFromText(std::string_view text);
std::uint32_t ProductTypeFromText(std::string_view text);

// To text; the views live as long as the library. A code outside the table gives "" (order type), "Both"
// (side), "NONE" (open/close) and "*" (product type).
std::string_view OrderTypeText(std::uint8_t code);
std::string_view SideText(std::uint8_t code);
std::string_view OpenCloseText(std::uint8_t code);
std::string_view ProductTypeText(std::uint32_t code);

}  // namespace Dravel

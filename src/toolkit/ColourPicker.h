// A small dialog that picks a colour: a palette, "Default", and the system's own dialog behind "Other...".
#pragma once

#include <cstdint>
#include <optional>

namespace Dravel {

struct ColourChoice {
    std::optional<std::uint32_t> colour;  // none: the default. Windows colour value
};

// Modal to `owner` (HWND). Nothing when the user cancelled.
std::optional<ColourChoice> PickColour(void* owner, std::uint32_t current);

}  // namespace Dravel

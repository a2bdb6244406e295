// Plain rectangles and resolution scaling, shared by all windows of the toolkit.
#pragma once

#include <cstdint>

namespace Dravel {

inline constexpr int kBaseDpi = 96;

// Pixels; right and bottom are one past the last. Same layout as the system's RECT.
struct Rect {
    int left = 0, top = 0, right = 0, bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool Contains(int x, int y) const { return x >= left && x < right && y >= top && y < bottom; }
    bool operator==(const Rect&) const = default;
};
static_assert(sizeof(Rect) == 16);

// A length at 96 dpi in pixels at `dpi`, rounded to the nearest.
constexpr int Scale(int length, int dpi) {
    return static_cast<int>((static_cast<std::int64_t>(length) * dpi + kBaseDpi / 2) / kBaseDpi);
}
constexpr int Unscale(int pixels, int dpi) {
    return static_cast<int>((static_cast<std::int64_t>(pixels) * kBaseDpi + dpi / 2) / dpi);
}

}  // namespace Dravel

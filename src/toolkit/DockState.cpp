#include "toolkit/DockState.h"

#include <algorithm>
#include <iterator>

namespace Dravel {
namespace {

constexpr int kMaxBarSize = 16384;  // no screen is wider

bool Sideways(DockSide side) {
    return side == DockSide::Left || side == DockSide::Right;
}

// What the bar takes of `room` pixels when it asks for `wanted`.
int Extent(int wanted, int room, int dpi) {
    const int most = std::max(room - Scale(kMinDockRemainder, dpi), room / 2);
    return std::clamp(wanted, 0, most) < Scale(kMinDockExtent, dpi)
               ? std::min(Scale(kMinDockExtent, dpi), most)
               : std::min(wanted, most);
}

bool SaneSize(int size) {
    return size >= kMinDockExtent && size <= kMaxBarSize;
}

}  // namespace

DockSplit SplitRoom(const Rect& room, const DockState& state, int dpi) {
    DockSplit split{room, room};
    const int width = Extent(state.width, std::max(room.Width(), 0), dpi);
    const int height = Extent(state.height, std::max(room.Height(), 0), dpi);
    switch (state.side) {
        case DockSide::Left:
            split.bar.right = split.rest.left = room.left + width;
            break;
        case DockSide::Right:
            split.bar.left = split.rest.right = room.right - width;
            break;
        case DockSide::Top:
            split.bar.bottom = split.rest.top = room.top + height;
            break;
        case DockSide::Bottom:
            split.bar.top = split.rest.bottom = room.bottom - height;
            break;
        default:
            split.bar = {};
            break;
    }
    return split;
}

DockState SaneDockState(const DockState& read, const DockState& fallback, const Rect& screen) {
    DockState state = read;
    if (state.side > DockSide::Bottom) state.side = DockSide::Floating;
    if (!SaneSize(state.width)) state.width = fallback.width;
    if (!SaneSize(state.height)) state.height = fallback.height;
    // The caption must be within reach.
    state.left = std::clamp(state.left, screen.left, std::max(screen.right - kMinDockExtent, screen.left));
    state.top = std::clamp(state.top, screen.top, std::max(screen.bottom - kMinDockExtent, screen.top));
    return state;
}

void DragSplitter(DockState& state, const Rect& room, int x, int y) {
    switch (state.side) {
        case DockSide::Left:
            state.width = x - room.left;
            break;
        case DockSide::Right:
            state.width = room.right - x;
            break;
        case DockSide::Top:
            state.height = y - room.top;
            break;
        case DockSide::Bottom:
            state.height = room.bottom - y;
            break;
        default:
            return;
    }
    int& extent = Sideways(state.side) ? state.width : state.height;
    extent = std::max(extent, kMinDockExtent);
}

DockSide DropSide(const Rect& frame, int x, int y, int margin) {
    const Rect reach{frame.left - margin, frame.top - margin, frame.right + margin, frame.bottom + margin};
    if (!reach.Contains(x, y)) return DockSide::Floating;
    const struct {
        DockSide side;
        int distance;
    } edges[] = {{DockSide::Left, x - frame.left},
                 {DockSide::Top, y - frame.top},
                 {DockSide::Right, frame.right - x},
                 {DockSide::Bottom, frame.bottom - y}};
    const auto nearest =
        std::min_element(std::begin(edges), std::end(edges),
                         [](const auto& a, const auto& b) { return a.distance < b.distance; });
    return nearest->distance <= margin ? nearest->side : DockSide::Floating;
}

}  // namespace Dravel

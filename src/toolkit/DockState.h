// Where a docking bar stands, and how a frame's room is divided between a docked bar and the rest. Without a
// window.
#pragma once

#include <cstdint>

#include "toolkit/Geometry.h"

namespace Dravel {

// The numbers are kept in the settings.
enum class DockSide : std::uint8_t { Floating = 0, Left = 1, Top = 2, Right = 3, Bottom = 4 };

// left and top: the floating window on the screen. width and height: its size; docked, the one across the
// side is the bar's extent (width at left and right, height at top and bottom). Pixels.
struct DockState {
    DockSide side = DockSide::Floating;
    int left = 0, top = 0, width = 0, height = 0;
    bool operator==(const DockState&) const = default;
};

inline constexpr int kMinDockExtent = 60;  // of a bar, at 96 dpi
inline constexpr int kMinDockRemainder =
    60;  // of what it leaves, at 96 dpi; on a frame too small for both it gives way

struct DockSplit {
    Rect bar, rest;
};
// Divides `room`: the bar gets its extent on its side, kept within the two minima, the rest remains.
DockSplit SplitRoom(const Rect& room, const DockState& state, int dpi);
// State as read from settings: an unknown side floats, sizes below the minimum or absurd take those of
// `fallback`, a floating place outside `screen` is moved in.
DockState SaneDockState(const DockState& read, const DockState& fallback, const Rect& screen);
// The extent that a splitter dragged to `x`,`y` asks for.
void DragSplitter(DockState& state, const Rect& room, int x, int y);
// The side that a bar dropped at a point docks on: within `margin` of an edge of `frame`, else Floating.
DockSide DropSide(const Rect& frame, int x, int y, int margin);

}  // namespace Dravel

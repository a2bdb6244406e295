// A line of texts at the bottom of a window, each in a part of its own; the last part takes the room that is
// left.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "toolkit/Geometry.h"

namespace Dravel {

// User-interface thread. A child of its parent, which destroys it.
class StatusLine {
 public:
    bool Create(void* parent, std::uint32_t id);
    void* Window() const { return window_; }
    void SetFont(void* font);  // HFONT, which stays the caller's
    int Height() const;        // pixels that a line of this font needs
    void Place(const Rect& place);
    // ANSI texts, a part each. Only what changed is drawn. A part grows with its text and never shrinks, so
    // that the line does not dance.
    void SetTexts(std::span<const std::string> texts);

    // The part that a WM_NOTIFY of the parent reports a click on; -1: it reports something else.
    int ClickedPart(std::intptr_t lparam) const;

 private:
    void LayOut();
    int TextWidth(const std::wstring& text) const;

    void* window_ = nullptr;
    void* font_ = nullptr;
    std::vector<std::wstring> texts_;
    std::vector<int> widths_;  // pixels, of the texts
};

}  // namespace Dravel

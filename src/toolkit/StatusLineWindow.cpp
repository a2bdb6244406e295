#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "toolkit/ActivationContext.h"
#include "toolkit/AnsiText.h"
#include "toolkit/Module.h"
#include "toolkit/StatusLine.h"

namespace Dravel {

namespace {

// At 96 dpi: beside a text in its part, and above and below it.
constexpr int kBeside = 8, kAbove = 3;

HWND Handle(void* window) {
    return static_cast<HWND>(window);
}
int DpiOf(void* window) {
    const UINT dpi = GetDpiForWindow(Handle(window));
    return dpi == 0 ? kBaseDpi : static_cast<int>(dpi);
}

// A device context with the line's font.
class Measure {
 public:
    Measure(void* window, void* font)
        : window_(Handle(window)), device_(GetDC(window_)), old_(SelectObject(device_, font)) {}
    ~Measure() {
        SelectObject(device_, old_);
        ReleaseDC(window_, device_);
    }
    Measure(const Measure&) = delete;
    Measure& operator=(const Measure&) = delete;
    HDC Device() const { return device_; }

 private:
    HWND window_;
    HDC device_;
    HGDIOBJ old_;
};

}  // namespace

bool StatusLine::Create(void* parent, std::uint32_t id) {
    const ActivationScope scope;
    const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_BAR_CLASSES};
    InitCommonControlsEx(&classes);
    window_ = CreateWindowExW(
        0, STATUSCLASSNAMEW, L"",
        WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | CCS_NORESIZE | CCS_NOPARENTALIGN | CCS_NODIVIDER, 0, 0, 0,
        0, Handle(parent), reinterpret_cast<HMENU>(static_cast<std::uintptr_t>(id)),
        static_cast<HINSTANCE>(Module()), nullptr);
    return window_ != nullptr;
}

void StatusLine::SetFont(void* font) {
    font_ = font;
    SendMessageW(Handle(window_), WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    for (std::size_t part = 0; part < texts_.size(); ++part)
        widths_[part] = TextWidth(texts_[part]);
    LayOut();
}

int StatusLine::Height() const {
    const Measure measure(window_, font_);
    TEXTMETRICW text{};
    GetTextMetricsW(measure.Device(), &text);
    return text.tmHeight + 2 * Scale(kAbove, DpiOf(window_));
}

void StatusLine::Place(const Rect& place) {
    SetWindowPos(Handle(window_), nullptr, place.left, place.top, place.Width(), place.Height(),
                 SWP_NOZORDER | SWP_NOACTIVATE);
    LayOut();
}

void StatusLine::SetTexts(std::span<const std::string> texts) {
    const bool fresh = texts_.size() != texts.size();
    bool wider = fresh;
    if (fresh) {
        texts_.assign(texts.size(), {});
        widths_.assign(texts.size(), 0);
    }
    std::vector<std::size_t> changed;
    for (std::size_t part = 0; part < texts.size(); ++part) {
        std::wstring text = Widen(texts[part]);
        if (text == texts_[part]) continue;
        const int width = TextWidth(text);
        wider = wider || width > widths_[part];
        widths_[part] = std::max(width, widths_[part]);
        texts_[part] = std::move(text);
        changed.push_back(part);
    }
    if (wider) LayOut();
    for (const std::size_t part : changed)
        SendMessageW(Handle(window_), SB_SETTEXTW, part, reinterpret_cast<LPARAM>(texts_[part].c_str()));
}

// Where there is no room for all, parts give way from the second on: the last one tells what just happened.
void StatusLine::LayOut() {
    if (widths_.empty()) return;
    std::vector<int> taken;
    for (const int width : widths_)
        taken.push_back(width == 0 ? 0 : width + 2 * Scale(kBeside, DpiOf(window_)));
    RECT client{};
    GetClientRect(Handle(window_), &client);
    int lacking = std::accumulate(taken.begin(), taken.end(), 0) - static_cast<int>(client.right);
    for (std::size_t part = 1; client.right > 0 && lacking > 0 && part + 1 < taken.size(); ++part)
        lacking -= std::exchange(taken[part], 0);
    std::vector<int> rights(taken.size());
    std::partial_sum(taken.begin(), taken.end(), rights.begin());
    rights.back() = -1;
    SendMessageW(Handle(window_), SB_SETPARTS, rights.size(), reinterpret_cast<LPARAM>(rights.data()));
}

int StatusLine::TextWidth(const std::wstring& text) const {
    const Measure measure(window_, font_);
    SIZE size{};
    GetTextExtentPoint32W(measure.Device(), text.data(), static_cast<int>(text.size()), &size);
    return size.cx;
}

int StatusLine::ClickedPart(std::intptr_t lparam) const {
    const auto* const told = reinterpret_cast<const NMMOUSE*>(lparam);
    if (window_ == nullptr || told->hdr.hwndFrom != window_ || told->hdr.code != NM_CLICK) return -1;
    return static_cast<int>(told->dwItemSpec);
}

}  // namespace Dravel

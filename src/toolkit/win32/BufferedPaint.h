// A picture of a window's client area that is drawn in memory and then put on the screen at once, so that
// nothing flickers.
#pragma once

#include <windows.h>

#include <algorithm>

namespace Dravel {

// Lives within one paint of `window`. Whatever is selected into the device is taken out again.
class BufferedPaint {
 public:
    BufferedPaint(HDC screen, HWND window) : screen_(screen), device_(CreateCompatibleDC(screen)) {
        GetClientRect(window, &client_);
        bitmap_ = CreateCompatibleBitmap(screen, std::max<LONG>(client_.right, 1),
                                         std::max<LONG>(client_.bottom, 1));
        state_ = SaveDC(device_);
        SelectObject(device_, bitmap_);
    }
    BufferedPaint(const BufferedPaint&) = delete;
    BufferedPaint& operator=(const BufferedPaint&) = delete;
    ~BufferedPaint() {
        RestoreDC(device_, state_);
        DeleteObject(bitmap_);
        DeleteDC(device_);
    }

    HDC Device() const { return device_; }
    const RECT& Client() const { return client_; }
    void Show(const RECT& part) const {
        BitBlt(screen_, part.left, part.top, part.right - part.left, part.bottom - part.top, device_,
               part.left, part.top, SRCCOPY);
    }

 private:
    HDC screen_, device_;
    HBITMAP bitmap_;
    RECT client_{};
    int state_;
};

}  // namespace Dravel

// The one window procedure behind the toolkit's own windows: bound to its object when the window is made,
// unbound when it goes, and no exception leaves it.
#pragma once

#include <windows.h>

#include "toolkit/Guarded.h"

namespace Dravel {

// T has HandleMessage(window, message, wparam, lparam), the first call with WM_NCCREATE. The
// object may be deleted inside HandleMessage(WM_NCDESTROY).
template <class T>
LRESULT CALLBACK BoundProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    const LibraryUse use;
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lparam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* object = reinterpret_cast<T*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (object == nullptr) return DefWindowProcW(window, message, wparam, lparam);
    if (message == WM_NCDESTROY) SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    return Guarded("window procedure", LRESULT{message == WM_CREATE ? -1 : 0},
                   [&] { return object->HandleMessage(window, message, wparam, lparam); });
}

}  // namespace Dravel

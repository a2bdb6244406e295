// The window of a property list: names and values in two columns, the description of the current item below.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "toolkit/Font.h"
#include "toolkit/Geometry.h"
#include "toolkit/PropertyList.h"

namespace Dravel {

inline constexpr wchar_t kPropertyListClass[] = L"KRVPPropertyList";

// What the user did to an item. Nothing of it is in the list yet: the owner decides, changes the list's item
// and calls Refresh.
struct PropertyChange {
    int id = 0;
    std::optional<std::uint32_t> value;  // none: a colour that is to be the default; also for a font
    FontBytes font{};                    // for a font
};

}  // namespace Dravel

// User-interface thread. Windows are void* (HWND). A child of a dialog; reads by a list box's messages
// (LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT, LB_GETCURSEL, LB_SETCURSEL, LB_FINDSTRINGEXACT by name), so that
// programs which read a screen can read it.
class CKRVPPropertyList {
 public:
    CKRVPPropertyList();
    ~CKRVPPropertyList();
    CKRVPPropertyList(const CKRVPPropertyList&) = delete;
    CKRVPPropertyList& operator=(const CKRVPPropertyList&) = delete;

    // `place` in the client pixels of `parent`, whose font it takes. First in the tab order.
    bool Create(void* parent, const Dravel::Rect& place, std::uint32_t id);
    void* Window() const { return window_; }
    Dravel::PropertyList& List() { return list_; }
    void Refresh();  // the list was changed
    // Ends the typing of a number as Enter does.
    void FinishEdit();

    // May show boxes and change the list.
    std::function<void(const Dravel::PropertyChange&)> onChange;
    Dravel::FontBytes font{};  // where the font picker starts

    // The window procedure's entry; not for callers.
    std::intptr_t HandleMessage(void* window, std::uint32_t message, std::uintptr_t wparam,
                                std::intptr_t lparam);

 private:
    friend struct PropertyPaint;
    friend struct PropertyInput;
    struct State;

    Dravel::PropertyList list_;
    void* window_ = nullptr;
    std::unique_ptr<State> state_;
};

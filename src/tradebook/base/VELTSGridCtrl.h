// What all grids of the plug-in share: the private clipboard format and copying as text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "toolkit/PGridCtrl.h"

class CVELTSGridCtrl : public CKRVPGridCtrl {
 public:
    // Name of the private clipboard format: narrow text, all columns in the order of their numbers,
    // tab-separated, CR LF, a zero byte at the end.
    static constexpr wchar_t kClipboardFormat[] = L"VELT_CLIPBOARD";

    // Puts the selected rows on the clipboard, as text (the columns shown) and in the private format. False
    // when nothing is selected or another program holds the clipboard.
    bool CopySelection();

 protected:
    // Whether `text` of the filter bar's field over a column hides a row. `item` is the owner's number for
    // what the row shows. A grid without a rule of its own hides nothing.
    virtual bool IsItemFilteredByFilterBar(std::uint32_t /*item*/, int /*column*/,
                                           std::string_view /*text*/) const {
        return false;
    }
};

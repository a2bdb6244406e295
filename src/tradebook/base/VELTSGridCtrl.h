// What all grids of the plug-in share: the column profile, the filter bar's switch, the private clipboard
// format, and copying as text and as HTML.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "host/User.h"
#include "platform/Files.h"
#include "toolkit/PGridCtrl.h"
#include "tradebook/base/ColumnProfile.h"

class CVELTSGridCtrl : public CKRVPGridCtrl {
 public:
    // Name of the private clipboard format: narrow text, all columns in the order of their numbers,
    // tab-separated, CR LF, a zero byte at the end.
    static constexpr wchar_t kClipboardFormat[] = L"VELT_CLIPBOARD";
    // The entry of the filter bar that filters nothing.
    static constexpr char kNoFilter[] = "<all>";

    // Puts the selected rows on the clipboard, as text (the columns shown) and in the private format. False
    // when nothing is selected or another program holds the clipboard, which the user is told.
    bool CopySelection();
    // Puts the selected rows on the clipboard as HTML and as text (the columns shown, with their headers in
    // the HTML), and tells the user so or why not.
    bool CopyAsHtml();

    void ToggleFilterBar();
    // What the menu calls the command that toggles the bar.
    const wchar_t* FilterMenuText() const { return FilterBarShown() ? L"Hide Filter" : L"Show Filter"; }

    // Writes the user's layout of the columns. False: the file could not be written. Nothing without a
    // profile.
    virtual bool SaveProfile();
    // Reads a profile that could not be read before and takes the user's layout over, unless a cell is open;
    // tells the user about a damaged one.
    void RetryProfile();

 protected:
    // The making of the columns, in this order: LoadProfile, LoadMultipleSort, AddColumn for each, and
    // RestoreColumnOrder, after which rows have been asked to stand in the saved order.
    void LoadProfile(Dravel::IFiles& files, const std::filesystem::path& dataFolder, std::string name);
    void LoadMultipleSort();
    void AddColumn(Dravel::GridColumn defaults);
    void RestoreColumnOrder();

    // Who is told; null: nobody.
    virtual Dravel::IUser* User() { return nullptr; }
    // The name of the grid, as its filter bar keeps it.
    virtual const char* GridName() const = 0;

    // Whether `text` of the filter bar's field over a column hides a row. `item` is the owner's number for
    // what the row shows. A grid without a rule of its own hides nothing.
    virtual bool IsItemFilteredByFilterBar(std::uint32_t /*item*/, int /*column*/,
                                           std::string_view /*text*/) const {
        return false;
    }

 private:
    bool MayCopy();
    void Tell(const char* text);

    std::unique_ptr<Dravel::ColumnProfile> profile_;
};

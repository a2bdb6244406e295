// A grid's column layout as the user left it: where it is kept, how columns are made from it, how it is
// written back.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/Files.h"
#include "support/KeptFile.h"
#include "toolkit/GridModel.h"
#include "tradebook/base/VELTPXMLSettings.h"

namespace Dravel {

// The values of a column's key.
struct ColumnLayout {
    std::string header;
    std::int32_t width = 0, visible = 0, align = 0, sort = 0, locked = 0, order = -1, group = -1, ordinal = 0;
};

// One file a profile: <data folder>\ColumnProfile\<name>\ColumnProfile.xml, with one key for the profile and
// one for each column (docs/settings.md). What the file says is laid over the columns' defaults; a value that
// is missing or out of its range leaves the default. User-interface thread.
class ColumnProfile {
 public:
    // A column as it was added.
    struct Record {
        std::string profile, key, header;
        int width = 0, align = 0;
        bool visible = true;
        int sort = 0, locked = 0;
        int spare = -1;
    };

    // Reads the file; without one, or when it is damaged, everything has its default. An empty `dataFolder`:
    // nothing is read, and Save writes no file. A file that is there and cannot be read is not replaced:
    // Retry.
    ColumnProfile(IFiles& files, const std::filesystem::path& dataFolder, std::string name);

    // Whether several columns may be sort keys at once; true until the user says otherwise.
    bool MultipleSort();

    // For each column of a new grid in turn: adds it, with its saved values and sort mark. Returns its
    // number.
    int AddColumn(GridModel& grid, GridColumn defaults, bool multipleSort);
    // Once all columns are there: the saved positions, sort ordinals and groups.
    void Restore(GridModel& grid);

    // Whether it is known what the file says.
    bool Known() const { return path_.empty() || file_.Known(); }
    // Reads a file that could not be read before. True: `grid`, made with the defaults, has the saved layout
    // now; what the user changed meanwhile stays as he left it, and what should have been saved is written.
    bool Retry(GridModel& grid, bool& multipleSort);
    // Writes the layout of `grid`. False: the file could not be written, or could not even be read; it is
    // then untouched.
    bool Save(const GridModel& grid, bool multipleSort);
    // What the user is to be told about a damaged file; empty: nothing, or it was handed out before.
    std::string TakeNotice() { return std::exchange(notice_, {}); }

    const std::vector<Record>& Records() const { return records_; }
    const std::filesystem::path& Path() const { return path_; }

 private:
    std::string KeyOf(const std::string& column) const { return name_ + "\\" + column; }
    void Read();
    bool Take(const std::string& text);
    void TakePlaces(GridModel& grid, int number, const ColumnLayout& saved, bool multipleSort);
    void LayChangesOver(const GridModel& grid, bool multipleSort);
    void Apply(GridModel& grid, bool multipleSort);
    bool SaveNow(const GridModel& grid, bool multipleSort, bool patient);
    bool Write(const GridModel& grid, bool multipleSort);

    std::string name_;
    std::filesystem::path path_;
    KeptFile file_;
    CVELTPXMLSettings settings_;
    std::vector<ColumnLayout> made_;  // before the user could change anything
    bool unsaved_ = false;            // a save waits for the file
    std::string notice_;
    std::map<std::int32_t, int> order_, groups_, ordinals_;  // saved position to column number
    std::vector<Record> records_;
};

}  // namespace Dravel

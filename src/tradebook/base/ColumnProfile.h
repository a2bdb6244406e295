// A grid's column layout as the user left it: where it is kept, how columns are made from it, how it is
// written back.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "platform/Files.h"
#include "toolkit/GridModel.h"
#include "tradebook/base/VELTPXMLSettings.h"

namespace Dravel {

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
    // nothing is read, and Save writes no file.
    ColumnProfile(IFiles& files, const std::filesystem::path& dataFolder, std::string name);

    // Whether several columns may be sort keys at once; true until the user says otherwise.
    bool MultipleSort();

    // For each column of a new grid in turn: adds it, with its saved values and sort mark. Returns its
    // number.
    int AddColumn(GridModel& grid, GridColumn defaults, bool multipleSort);
    // Once all columns are there: the saved positions, sort ordinals and groups.
    void Restore(GridModel& grid);

    // Writes the layout of `grid`. False: the file could not be written; the old one is then untouched.
    bool Save(const GridModel& grid, bool multipleSort);

    const std::vector<Record>& Records() const { return records_; }
    const std::filesystem::path& Path() const { return path_; }

 private:
    std::string KeyOf(const std::string& column) const { return name_ + "\\" + column; }
    bool Write(const GridModel& grid, bool multipleSort);
    bool WriteColumn(const GridModel& grid, int column);

    IFiles& files_;
    std::string name_;
    std::filesystem::path path_;
    CVELTPXMLSettings settings_;
    std::map<std::int32_t, int> order_, groups_, ordinals_;  // saved position to column number
    std::vector<Record> records_;
};

}  // namespace Dravel

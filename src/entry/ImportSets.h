// The import format sets as the import dialog offers them: which there are, which one is chosen, which one a
// file was made for.
#pragma once

#include <filesystem>
#include <vector>

#include "formatset/FormatSetFolder.h"
#include "formatset/ImportMapping.h"

namespace Dravel {

// User-interface thread.
class ImportSets {
 public:
    ImportSets(IFiles& files, std::filesystem::path folder)
        : files_(files), folder_(files, std::move(folder)) {}

    // Lists the folder anew and reads the chosen set again; one that is gone is chosen no longer.
    void Reload();
    // In the order of their letters.
    const std::vector<std::filesystem::path>& Names() const { return names_; }

    // Chooses a set, letter case aside; a name that is not in the list, or whose file cannot be read: none.
    void Choose(const std::filesystem::path& name);
    // Empty: none. The file's first line then names the columns by the import's own keys.
    const std::filesystem::path& Chosen() const { return chosen_; }
    const ImportMapping& Mapping() const { return mapping_; }

    // The set made for this file's first line, when it is another than the chosen one and that one was not
    // made for it as well; else empty.
    std::filesystem::path Suggestion(const std::filesystem::path& file) const;

 private:
    IFiles& files_;
    FormatSetFolder folder_;
    std::vector<std::filesystem::path> names_;
    std::filesystem::path chosen_;
    ImportMapping mapping_;
};

}  // namespace Dravel

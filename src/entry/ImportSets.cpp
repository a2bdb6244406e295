#include "entry/ImportSets.h"

#include <string>

namespace Dravel {

void ImportSets::Reload() {
    names_ = folder_.Names();
    Choose(std::filesystem::path(chosen_));
}

void ImportSets::Choose(const std::filesystem::path& name) {
    chosen_ = name.empty() ? name : folder_.Find(name);
    mapping_ = {};
    FormatSet set;
    if (chosen_.empty()) return;
    if (folder_.Load(chosen_, set)) {
        mapping_ = MappingOf(set);
    } else {
        chosen_.clear();
    }
}

std::filesystem::path ImportSets::Suggestion(const std::filesystem::path& file) const {
    std::string firstLine;
    if (names_.empty() || !FirstLineOf(files_, file, firstLine)) return {};
    std::vector<FormatSet> sets(names_.size());
    for (std::size_t index = 0; index < names_.size(); ++index) {
        // One that cannot be read names nothing, and so fits nothing.
        folder_.Load(names_[index], sets[index]);
        if (names_[index] == chosen_ && SetForHeader({&sets[index], 1}, firstLine) == 0) return {};
    }
    const std::size_t best = SetForHeader(sets, firstLine);
    return best < names_.size() ? names_[best] : std::filesystem::path();
}

}  // namespace Dravel

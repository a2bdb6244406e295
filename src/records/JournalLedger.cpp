#include "records/JournalLedger.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include "records/JournalScan.h"

namespace Dravel {

bool JournalLedger::HoldsWaiting(const std::string& file, std::uint32_t number) {
    if (file != asked_) {
        asked_ = file;
        numbers_.clear();
        ReadFolder(folder_);
        ReadFolder(folder_ / "History");
    }
    return numbers_.contains(number);
}

// Also journals that were kept beside: their trades were in a book.
void JournalLedger::ReadFolder(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> names;
    files_.List(folder, names);
    for (const std::filesystem::path& name : names) {
        if (name.string().find(".journal") != std::string::npos) ReadFile(folder / name);
    }
}

void JournalLedger::ReadFile(const std::filesystem::path& path) {
    std::unique_ptr<IFile> file;
    if (!files_.Open(path, FileMode::Read, FileShare::DenyNone, file)) return;
    JournalWalk walk(*file);
    JournalEntry entry;
    do {
        for (auto frame = walk.Next(); !frame.empty(); frame = walk.Next()) {
            if (CodeOf(frame) != msg::JournalPut) continue;
            ReadJournalFrame(frame, entry);
            if (entry.source.kind == ChangeKind::Terminal && entry.source.name == asked_)
                numbers_.insert(entry.source.number);
        }
    } while (walk.Hunt());
}

void JournalLedger::Look() {
    const auto kept = std::stable_partition(waits_.begin(), waits_.end(),
                                            [this](const auto& wait) { return !journal_.Kept(wait.first); });
    const std::vector<std::pair<std::uint64_t, std::function<void()>>> done(
        std::make_move_iterator(kept), std::make_move_iterator(waits_.end()));
    waits_.erase(kept, waits_.end());
    for (const auto& [told, call] : done)
        call();
}

}  // namespace Dravel

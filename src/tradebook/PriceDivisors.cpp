#include "tradebook/PriceDivisors.h"

#include <memory>
#include <string_view>
#include <vector>

#include "formatset/CsvLine.h"
#include "formatset/NumberText.h"
#include "platform/FileTools.h"
#include "records/RecordText.h"

namespace Dravel {

FileStatus PriceDivisors::Load(IFiles& files, const std::filesystem::path& path) {
    divisors_.clear();
    std::unique_ptr<IFile> file;
    const FileStatus status = files.Open(path, FileMode::Read, FileShare::DenyNone, file);
    if (Missing(status)) return {};
    if (!status) return status;
    CsvLines lines(*file);
    std::string_view line;
    std::vector<std::string_view> cells;
    while (lines.Next(line)) {
        SplitCells(line, cells, 2);
        if (cells.size() < 2) continue;
        const std::string key(Trimmed(cells[0]));
        const double divisor = ReadDouble(Trimmed(cells[1]));
        if (!key.empty() && divisor > 0) divisors_[key] = divisor;
    }
    return lines.Failed() ? FileStatus{FileFault::Other, 0} : FileStatus{};
}

double PriceDivisors::PriceOf(const TradeRecord& record) const {
    if (divisors_.empty() || record.security == nullptr) return record.price;
    std::string_view key = TextOf(record.security->divisorKey);
    if (key.empty()) key = TextOf(record.security->symbol);
    const auto found = divisors_.find(std::string(key));  // short enough to need no memory of its own
    return found == divisors_.end() ? record.price : record.price / found->second;
}

}  // namespace Dravel

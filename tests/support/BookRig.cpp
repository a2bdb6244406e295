#include "support/BookRig.h"

#include "records/TradeFrame.h"

namespace Dravel::Test {

TradeRecord RandomTrade(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    TradeRecord trade{};
    auto* bytes = reinterpret_cast<std::uint8_t*>(&trade);
    for (const TradeField& field : kTradeFields) {
        const bool text = field.kind == FieldKind::Text;
        const std::size_t length = text ? random() % (field.capacity + 1u) : field.capacity;
        for (std::size_t i = 0; i < length; ++i) {
            const auto byte = static_cast<std::uint8_t>(random());
            bytes[field.offset + i] = random() % 16 == 0 || (text && byte == 0) ? std::uint8_t{'#'} : byte;
        }
    }
    if (trade.productType == 0) trade.productType = 1;
    return trade;
}

Trades SomeTrades(std::size_t count, std::uint32_t first) {
    Trades trades;
    for (std::uint32_t i = 0; i < count; ++i) {
        trades.push_back(RandomTrade(first + i));
        trades.back().veltTradeID = first + i;
    }
    return trades;
}

Trades TradesOfOneLength(std::size_t count, std::size_t frameBytes) {
    Trades trades(count);
    for (std::size_t i = 0; i < count; ++i) {
        trades[i].veltTradeID = static_cast<std::uint32_t>(i + 1);
        trades[i].productType = 1;
        auto* bytes = reinterpret_cast<std::uint8_t*>(&trades[i]);
        for (const TradeField& field : kTradeFields) {
            const std::size_t missing = frameBytes - FramesOf({trades[i]}).size();
            if (field.kind != FieldKind::Text) continue;
            std::memset(bytes + field.offset, static_cast<int>('A' + i),
                        std::min<std::size_t>(missing, field.capacity));
        }
    }
    return trades;
}

BookImage ImageOf(const Trades& trades) {
    BookImage image;
    for (const TradeRecord& trade : trades) {
        image.Append(trade);
    }
    return image;
}

FileBytes FramesOf(const Trades& trades) {
    FileBytes bytes;
    for (const TradeRecord& trade : trades) {
        std::uint8_t frame[kMaxTradeFrame];
        bytes.insert(bytes.end(), frame, frame + BuildStoredTrade(trade, false, frame));
    }
    return bytes;
}

std::unique_ptr<BookFile> BookRig::Make() {
    return std::make_unique<BookFile>(disk, clock, log,
                                      KRV::Base::RecordFilePlace{"Data", "Data/Backup", "DravelBook_Dravel"});
}

bool BookRig::Start() {
    file.reset();
    file = Make();
    return static_cast<bool>(file->Acquire());
}

Trades BookRig::Load() {
    Trades trades;
    report = file->LoadBook([&](const TradeRecord& trade, bool deleted) {
        if (!deleted) trades.push_back(trade);
    });
    return trades;
}

Trades BookRig::Reopen() {
    return Start() ? Load() : Trades();
}

std::vector<std::string> BookRig::Backups() const {
    std::vector<std::string> backups;
    for (const std::string& name : disk.Names()) {
        if (name.starts_with("Data/Backup/")) backups.push_back(name.substr(12));
    }
    return backups;
}

std::vector<std::string> BookRig::NamesOfAnOpenBook() const {
    std::vector<std::string> names;
    for (const std::string& backup : Backups()) {
        names.push_back("Data/Backup/" + backup);
    }
    names.insert(names.end(), {kBook, kBookLock, kBookSums});
    return names;
}

Trades TradesIn(const FileBytes& bytes, KRV::VELT::TradeLoadReport* report) {
    BookRig rig;
    rig.disk.Put(kBook, bytes);
    Trades trades = rig.Reopen();
    if (report) *report = rig.report;
    return trades;
}

}  // namespace Dravel::Test

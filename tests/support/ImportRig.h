// An import with everybody around it made up: Import("text") runs it, what came of it stands in the members.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "entry/CsvImport.h"
#include "support/FakeClock.h"
#include "support/FakeHost.h"
#include "support/FakeUser.h"
#include "support/FaultFiles.h"
#include "support/PlainKey.h"
#include "tradebook/TradeColumns.h"

namespace Dravel::Test {

using Strings = std::vector<std::string>;

class FakeBook final : public ITradeSink {
 public:
    std::uint32_t HolderOf(const TradeRecord& record) const override {
        ++calls;
        const auto holder = keys_.find(PlainKey(record));
        return holder == keys_.end() ? 0 : holder->second;
    }
    std::uint32_t AddUnlessHeld(TradeRecord& record, const ChangeSource& from) override {
        source = from;
        if (const std::uint32_t holder = HolderOf(record); holder != 0) return holder;
        Add(record);
        if (onAdd) onAdd();
        return 0;
    }
    const SecurityMasterEntry* ContractOf(const TradeRecord& record) override {
        const auto found = contracts.find(std::string(TextOf(record.securityID)));
        return found == contracts.end() ? nullptr : found->second;
    }
    void BeginBatch() override { ++calls, ++batches; }
    void EndBatch() override { ++calls, --batches; }
    void Add(TradeRecord& record) {
        record.veltTradeID = record.veltOrderID = static_cast<std::uint32_t>(trades.size() + 1);
        keys_.emplace(PlainKey(record), +record.veltTradeID);
        trades.push_back(record);
    }
    // One cell of every trade, each followed by a blank.
    std::string Cells(int column) const {
        std::string all, text;
        for (const TradeRecord& trade : trades) {
            CellText(trade, column, text);
            all += text + " ";
        }
        return all;
    }
    std::vector<TradeRecord> trades;
    ChangeSource source;                                          // of the last trade
    std::map<std::string, const SecurityMasterEntry*> contracts;  // by SecurityID
    std::function<void()> onAdd;  // as the terminal may call back when it is told
    int batches = 0;              // that are open
    mutable int calls = 0;

 private:
    std::map<std::string, std::uint32_t> keys_;
};

class ImportRig {
 public:
    ImportRig() {
        host.clients = {"C1", "C2"};
        disk.MakeFolders("out");
    }

    CsvImport& Started(const std::string& text, decltype(ImportPorts::reportTo) reportTo = {}) {
        disk.Put("in.csv", FileBytes(text.begin(), text.end()));
        run = std::make_unique<CsvImport>(
            ImportPorts{disk, host, user, clock, book, manual, std::move(reportTo)}, mapping);
        return *run;
    }
    bool Import(const std::string& text) { return Started(text).Run("in.csv"); }
    std::size_t Finished() const { return host.Sent(msg::ImportFinished).size(); }
    // The rows of the report: "line reason".
    Strings Listed() const {
        Strings rows;
        for (const ReportRow& row : run->Report().Rows())
            rows.push_back(std::to_string(row.line) + " " + run->Report().Reason(row));
        return rows;
    }
    static constexpr char kSaved[] = "out/skipped.csv";
    // What the report saves of the lines that were left out.
    std::string Saved() {
        if (!run->Report().SaveSkipped(disk, kSaved)) return "failed";
        const FileBytes& bytes = disk.Content(kSaved);
        return {bytes.begin(), bytes.end()};
    }

    FakeClock clock;
    FaultFiles disk{clock};
    FakeHost host;
    FakeUser user;
    FakeBook book;
    ManualClients manual{disk, host, "set"};
    ImportMapping mapping;
    std::unique_ptr<CsvImport> run;
};

}  // namespace Dravel::Test

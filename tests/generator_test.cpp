// The sample trades: the same on every run, unique, and in step with the sample contracts and clients.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include "SourceFolder.h"
#include "formatset/CsvLine.h"
#include "formatset/NumberText.h"
#include "generator/TradeGenerator.h"
#include "generator/Universe.h"
#include "records/RecordText.h"
#include "support/PlainKey.h"
#include "tradebook/TradeColumns.h"

namespace Dravel {
namespace {

std::string Made(const SampleFile& file) {
    std::string text;
    WriteSampleFile(file, [&text](std::string_view line) { text += line; });
    return text;
}

std::string Stored(const char* name) {
    std::ifstream file(std::string(DRAVEL_SOURCE_DIR "/samples/") + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Generator, StoredSamplesAreWhatItMakes) {
    EXPECT_EQ(Stored("trades-200.csv"), Made({.trades = 200, .seed = 20260216}));
    EXPECT_EQ(Stored("SecurityMaster.csv"), Sample::SecurityMasterCsv());
    EXPECT_EQ(Stored("Clients.csv"), Sample::ClientsCsv());
}

TEST(Generator, TradesAreDistinctOnTickAndForKnownContracts) {
    std::map<std::string, const Sample::Contract*> master;
    for (const auto& contract : Sample::Contracts())
        master[contract.entry.securityID] = &contract;
    TradeGenerator generator(3);
    TradeRecord record;
    std::set<std::string> keys;
    for (int i = 0; i < 20000; ++i) {
        generator.Fill(record);
        ASSERT_TRUE(keys.insert(PlainKey(record)).second);
        const Sample::Contract& contract = *master.at(std::string(TextOf(record.securityID)));
        ASSERT_TRUE(contract.traded);
        ASSERT_EQ(TextOf(record.symbol), contract.entry.symbol);
        ASSERT_EQ(TextOf(record.expiryDate), contract.entry.expiryText);
        ASSERT_EQ(record.quantity % contract.lot, 0u);
        const double price = record.price;
        const double ticks = price * 100 / contract.tick;
        ASSERT_NEAR(ticks, std::round(ticks), 1e-6);
        ASSERT_GT(price, 0);
        ASSERT_TRUE(std::ranges::count(Sample::Clients(), TextOf(record.clientID)));
        ASSERT_TRUE(record.side == 1 || record.side == 2);
    }
}

TEST(Generator, LinesPutBackGiveTheSameTrade) {
    TradeGenerator generator(4);
    TradeRecord record;
    std::vector<std::string_view> cells;
    for (int i = 0; i < 1000; ++i) {
        generator.Fill(record);
        const std::string line = TradeGenerator::CsvLine(record);
        SplitCells(line, cells);
        ASSERT_EQ(cells.size(), std::size_t{column::Count});
        TradeRecord back{};
        for (std::size_t column = 0; column < cells.size(); ++column)
            kTradeColumns[column].put(back, cells[column]);
        ASSERT_EQ(std::memcmp(&back, &record, sizeof(record)), 0) << line;
    }
}

TEST(Generator, MixesInTheLinesAskedFor) {
    const std::string text = Made({.trades = 500,
                                   .seed = 9,
                                   .duplicates = 40,
                                   .unknownLines = 30,
                                   .unknownClients = 4,
                                   .header = false});
    std::multiset<std::string> lines;
    std::set<std::string> strangers;
    std::vector<std::string_view> cells;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find("\r\n", at);
        lines.insert(text.substr(at, end - at));
        SplitCells(std::string_view(text).substr(at, end - at), cells);
        if (cells[column::ClientID].starts_with("NEW")) strangers.emplace(cells[column::ClientID]);
        at = end + 2;
    }
    EXPECT_EQ(lines.size(), 570u);
    EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()).size(), 530u);
    EXPECT_EQ(strangers.size(), 4u);
}

}  // namespace
}  // namespace Dravel

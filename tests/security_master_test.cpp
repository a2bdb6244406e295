// The security master file: what it answers, and what it makes of files that are none.
#include <gtest/gtest.h>

#include "support/FakeClock.h"
#include "support/FaultFiles.h"
#include "support/SecurityMaster.h"

using namespace Dravel;
using namespace Dravel::Test;

namespace {

using Outcome = SecurityMasterLoad::Outcome;

struct MasterFileTest : ::testing::Test {
    static constexpr std::string_view kHeader =
        "exchange,securityid,securitytype,symbol,expiry,optiontype,strike,divisorkey\n";

    SecurityMasterLoad Load(const std::string& text) {
        files.Put("master.csv", {text.begin(), text.end()});
        return master.Load(files, "master.csv");
    }
    MasterAnswer Answer(std::uint32_t kind, std::vector<const char*> texts) {
        MasterRequest request{kind, static_cast<std::uint32_t>(texts.size()), {}};
        std::copy(texts.begin(), texts.end(), request.texts);
        return master.Answer(request);
    }
    // The texts of a list joined by blanks; of a contract "=" and its identifier; "-" for none.
    std::string Ask(std::uint32_t kind, std::vector<const char*> texts) {
        const MasterAnswer answer = Answer(kind, std::move(texts));
        if (answer.entry) return "=" + std::string(answer.entry->securityID);
        std::string all;
        for (std::uint32_t i = 0; i < answer.count; ++i)
            (all += i ? " " : "") += answer.list[i];
        return answer.count ? all : "-";
    }

    FakeClock clock;
    FaultFiles files{clock};
    SecurityMaster master;
};

}  // namespace

TEST_F(MasterFileTest, EveryKindIsAnswered) {
    const auto load = Load(std::string(kHeader) +
                           "NSE,1,INDEX,NIFTY,,,0,N\n"
                           "NSE,2,FUTIDX,NIFTY,26Feb2026,,0,N\n"
                           "NSE,3,OPTIDX,NIFTY,26Feb2026,CE,21100,N\n"
                           "NSE,4,OPTIDX,NIFTY,26Feb2026,CE,21100.50,N\n"
                           "NSE,5,OPTIDX,NIFTY,26Feb2026,PE,21100,N\n"
                           "NSE,6,OPTIDX,BANK,26Mar2026,CE,400,B\r\n"
                           "BSE,2,EQ,ACME,,,,\n"
                           "bse,2,EQ,ACME,,,,");
    EXPECT_EQ(load.outcome, Outcome::Loaded);
    EXPECT_EQ(load.contracts, 8u);
    master.AddClient("C1");
    master.AddClient("C2");
    const struct {
        std::uint32_t kind;
        std::vector<const char*> texts;
        const char* answer;
    } kCases[] = {
        {master::Exchanges, {}, "NSE BSE"},
        {master::SecurityTypes, {"nse"}, "INDEX FUTIDX OPTIDX"},
        {master::Symbols, {"NSE", "OptIdx"}, "NIFTY BANK"},
        {master::Expiries, {"NSE", "OPTIDX", "NIFTY"}, "26Feb2026"},
        {master::Expiries, {"NSE", "INDEX", "NIFTY"}, "-"},
        {master::OptionTypes, {"NSE", "OPTIDX", "NIFTY", "26FEB2026"}, "CE PE"},
        {master::Strikes, {"NSE", "OPTIDX", "NIFTY", "26Feb2026", "CE"}, "21100 21100.5"},
        {master::Contract, {"NSE", "FUTIDX", "NIFTY", "26Feb2026"}, "=2"},
        {master::Contract, {"NSE", "INDEX", "NIFTY", ""}, "=1"},
        {master::Contract, {"NSE", "INDEX", "NIFTY", nullptr}, "=1"},
        {master::Contract, {"NSE", "OPTIDX", "NIFTY", "26Feb2026"}, "-"},
        {master::OptionContract, {"NSE", "OPTIDX", "NIFTY", "26Feb2026", "CE", "2.11005e4"}, "=4"},
        {master::OptionContract, {"NSE", "OPTIDX", "NIFTY", "26Feb2026", "PE", "21100.50"}, "-"},
        {master::OptionContract, {"NSE", "OPTIDX", "NIFTY", "26Feb2026", "PE", "nan"}, "-"},
        {master::ContractByID, {"bse", "2"}, "=2"},
        {master::ContractByID, {"BSE", "3"}, "-"},
        {master::Clients, {}, "C1 C2"},
        {master::CtclEntries, {"NSE"}, "-"},
        {master::Symbols, {"NSE"}, "-"},
        {99, {"NSE"}, "-"},
    };
    for (const auto& c : kCases)
        EXPECT_EQ(Ask(c.kind, c.texts), c.answer) << c.kind << ' ' << (c.texts.empty() ? "" : c.texts.back());
    EXPECT_STREQ(Answer(master::ContractByID, {"BSE", "2"}).entry->exchange, "BSE")
        << "the first of two counts";
}

TEST_F(MasterFileTest, ColumnsAreFoundByTheirNames) {
    std::string header = "\xEF\xBB\xBFStrike, SYMBOL ,securityid,symbol", line = "5,S,1,other";
    for (int i = 0; i < 5000; ++i) {
        header += ",more" + std::to_string(i);
        line += ",x";
    }
    const auto load = Load(header + ",SecurityType,exchange\r\n" + line + ",EQ,E\r\n" + line + "\r\n");
    EXPECT_EQ(load.contracts, 1u);
    EXPECT_EQ(load.passedOver, 1u);
    EXPECT_EQ(Ask(master::Symbols, {"E", "EQ"}), "S");
}

TEST_F(MasterFileTest, FilesThatAreNoMasterAddNothing) {
    for (const std::string& text :
         {std::string(), std::string("\n"), std::string(1 << 20, ','), std::string(10 << 20, 'x'),
          std::string("exchange,securityid,securitytype\nNSE,1,EQ\n"), std::string("NSE,1,EQ,ACME\n"),
          std::string(1000, '\0')}) {
        EXPECT_EQ(Load(text).outcome, Outcome::NoMaster) << text.substr(0, 40);
    }
    EXPECT_EQ(master.Load(files, "none.csv").outcome, Outcome::Missing);
    EXPECT_TRUE(master.Contracts().empty());
    EXPECT_EQ(Ask(master::Exchanges, {}), "-");
}

TEST_F(MasterFileTest, LinesThatAreNoContractArePassedOver) {
    const std::string good = "NSE,1,EQ,ACME,,,,\n";
    for (const std::string& bad :
         {std::string("\n"), std::string(",1,EQ,ACME\n"), std::string("NSE, ,EQ,ACME\n"),
          std::string("NSE,1,EQ\n"), std::string("NSE,1,EQ,A\0B\n", 13),
          "NSE,1,EQ," + std::string(33, 'x') + "\n", std::string("NSE,1,OPT,A,,CE,x,\n"),
          std::string("NSE,1,OPT,A,,CE,inf,\n"), std::string(10 << 20, 'x') + "\n"}) {
        const auto load = Load(std::string(kHeader) + bad + good);
        EXPECT_EQ(load.contracts, 1u) << bad.substr(0, 40);
        EXPECT_EQ(load.passedOver, 1u) << bad.substr(0, 40);
    }
    const auto load = Load(std::string(kHeader) + "NSE,9,EQ," + std::string(32, 'y') + ",,,,," +
                           std::string(10 << 20, 'x'));
    EXPECT_EQ(load.contracts, 1u) << "what follows the columns does not matter";
    EXPECT_EQ(Ask(master::ContractByID, {"NSE", "9"}), "=9");
}

TEST_F(MasterFileTest, AFileThatBreaksOffKeepsWhatCameBefore) {
    std::string text(kHeader);
    for (int i = 0; i < 20000; ++i)
        text += "NSE," + std::to_string(i) + ",EQ,S" + std::to_string(i) + ",,,,\n";
    files.CountAnew();
    files.plan.failAt = 3;
    const auto load = Load(text);
    EXPECT_EQ(load.outcome, Outcome::CutShort);
    EXPECT_GT(load.contracts, 5000u);
    EXPECT_EQ(master.Contracts().size(), load.contracts);
}

// Lays out the contracts: what is listed where stands in tables, strikes and expiries follow by rule.
#include "generator/Universe.h"

#include <algorithm>
#include <array>

#include "formatset/DateFormat.h"
#include "formatset/NumberText.h"
#include "records/RecordText.h"

namespace Dravel::Sample {
namespace {

struct Market {
    const char* exchange;
    std::uint32_t lot;
    std::uint32_t tick;
};
struct Underlying {
    const char* symbol;
    std::int64_t price;       // hundredths
    std::int64_t strikeStep;  // hundredths
};
struct Listing {
    Market market;
    std::array<Underlying, 2> indexes;
    std::array<Underlying, 6> shares;
};

constexpr Listing kListings[] = {
    {{"XNSE", 50, 5},
     {{{"IND50", 2215000, 10000}, {"BNK12", 4782000, 20000}}},
     {{{"ARYASTEEL", 78420, 1000},
       {"BHUMIPWR", 31265, 500},
       {"CHANDRAIT", 164530, 2000},
       {"DEEPOIL", 245175, 2000},
       {"GANGACEM", 98840, 1000},
       {"KAVERIBNK", 142610, 2000}}}},
    {{"XCME", 20, 25},
     {{{"US500", 512500, 2500}, {"USTEC", 1795000, 10000}}},
     {{{"ACORN", 17240, 250},
       {"BIRCH", 40410, 500},
       {"CEDAR", 9875, 100},
       {"DOGWOOD", 51330, 500},
       {"ELMCO", 6125, 100},
       {"FIRTECH", 87650, 1000}}}},
    {{"XEUR", 10, 50},
     {{{"EU50", 496000, 2500}, {"DE40", 1785000, 10000}}},
     {{{"ALSTER", 18150, 250},
       {"BODEN", 4520, 100},
       {"DANUBIA", 26300, 250},
       {"ELBEWERK", 9980, 100},
       {"NECKAR", 7350, 100},
       {"SAALE", 21400, 250}}}},
    {{"XHKF", 100, 20},
     {{{"HK50", 1665000, 10000}, {"HKTEC", 342000, 2500}}},
     {{{"HARBOUR", 6240, 100},
       {"JADE", 30480, 500},
       {"KOWLOON", 8820, 100},
       {"LANTAU", 4160, 100},
       {"PEARL", 15500, 250},
       {"VICTORIA", 5535, 100}}}},
    {{"XTKS", 100, 100},
     {{{"JP225", 3895000, 25000}, {"JPX400", 2415000, 10000}}},
     {{{"AKAGI", 352500, 5000},
       {"FUJITEC", 1284000, 10000},
       {"HOKUTO", 218500, 2500},
       {"KAZE", 97600, 1000},
       {"MINATO", 645000, 5000},
       {"SORA", 154300, 2500}}}},
};

constexpr int kYear = 2026, kFirstMonth = 2, kExpiries = 3;

// The last Thursday of the n-th month from the first one, as "26Feb2026".
std::string ExpiryText(int n) {
    const std::int64_t days = DaysFromCivil(kYear, kFirstMonth + n + 1, 1) - 1;  // the month's last day
    const CivilTime date = CivilFromTime((days - days % 7) * 86400);             // day 0 was a Thursday
    constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    return std::to_string(100 + date.day).substr(1) + kMonths[date.month - 1] + std::to_string(date.year);
}

std::int64_t OnTick(std::int64_t price, std::int64_t tick) {
    return std::max(tick, price / tick * tick);
}

class Builder {
 public:
    std::vector<Contract> Build() {
        for (const Listing& listing : kListings)
            AddListing(listing);
        return std::move(contracts_);
    }

 private:
    void AddListing(const Listing& listing) {
        market_ = listing.market;
        for (const Underlying& index : listing.indexes) {
            Add("INDEX", index, "", "", 0, index.price).traded = false;
            AddDerivatives(index, "FUTIDX", "OPTIDX", kExpiries, 10);
        }
        for (const Underlying& share : listing.shares) {
            Add("EQ", share, "", "", 0, share.price).lot = 1;
            AddDerivatives(share, "FUTSTK", "OPTSTK", 2, 5);
        }
    }

    void AddDerivatives(const Underlying& of, const char* future, const char* option, int optionExpiries,
                        int wings) {
        for (int n = 0; n < kExpiries; ++n) {
            const std::string expiry = ExpiryText(n);
            Add(future, of, expiry, "", 0, of.price + of.price * (n + 1) / 250);
            for (int wing = -wings; n < optionExpiries && wing <= wings; ++wing)
                AddPair(of, option, expiry, n, wing);
        }
    }

    // A call and a put at one strike: what it is worth at once, and something for the time left.
    void AddPair(const Underlying& of, const char* type, const std::string& expiry, int n, int wing) {
        const std::int64_t strike = (of.price / of.strikeStep + wing) * of.strikeStep;
        const std::int64_t timeValue = of.price * (n + 2) / (100 + 12 * std::abs(wing));
        Add(type, of, expiry, "CE", strike, std::max<std::int64_t>(of.price - strike, 0) + timeValue);
        Add(type, of, expiry, "PE", strike, std::max<std::int64_t>(strike - of.price, 0) + timeValue);
    }

    Contract& Add(const char* type, const Underlying& of, const std::string& expiry, const char* optionType,
                  std::int64_t strike, std::int64_t price) {
        Contract contract{};
        SetText(contract.entry.exchange, market_.exchange);
        SetText(contract.entry.securityID, std::to_string(100001 + contracts_.size()));
        SetText(contract.entry.securityType, type);
        SetText(contract.entry.symbol, of.symbol);
        SetText(contract.entry.expiryText, expiry);
        SetText(contract.entry.optionType, optionType);
        SetText(contract.entry.divisorKey, of.symbol);
        contract.entry.strikePrice = static_cast<double>(strike) / 100;
        contract.lot = market_.lot;
        contract.tick = market_.tick;
        contract.price = OnTick(price, market_.tick);
        contract.traded = true;
        contracts_.push_back(contract);
        return contracts_.back();
    }

    std::vector<Contract> contracts_;
    Market market_{};
};

void AppendLine(std::string& csv, const SecurityMasterEntry& entry) {
    for (const std::string_view text :
         {TextOf(entry.exchange), TextOf(entry.securityID), TextOf(entry.securityType), TextOf(entry.symbol),
          TextOf(entry.expiryText), TextOf(entry.optionType)}) {
        csv.append(text) += ',';
    }
    AppendShortest(csv, entry.strikePrice);
    csv.append(",").append(TextOf(entry.divisorKey)).append("\r\n");
}

}  // namespace

const std::vector<Contract>& Contracts() {
    static const std::vector<Contract> contracts = Builder().Build();
    return contracts;
}

const std::vector<std::string>& Clients() {
    static const std::vector<std::string> clients = [] {
        std::vector<std::string> names;
        for (const char* house : {"ALD", "BRK", "CTY", "DLN", "EST"}) {
            for (int n = 1; n <= 8; ++n)
                names.push_back(house + std::to_string(1000 + n * 7));
        }
        return names;
    }();
    return clients;
}

std::string SecurityMasterCsv() {
    std::string csv = "exchange,securityid,securitytype,symbol,expiry,optiontype,strike,divisorkey\r\n";
    for (const Contract& contract : Contracts())
        AppendLine(csv, contract.entry);
    return csv;
}

std::string ClientsCsv() {
    std::string csv = "clientid\r\n";
    for (const std::string& client : Clients())
        csv += client + "\r\n";
    return csv;
}

}  // namespace Dravel::Sample

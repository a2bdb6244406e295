// The security master out of a file, indexed so that each request is a few look-ups.
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "formatset/TextHash.h"
#include "host/HostTypes.h"
#include "platform/Files.h"

namespace Dravel {

// What became of a master file.
struct SecurityMasterLoad {
    enum class Outcome : std::uint8_t {
        Loaded,
        Missing,   // the file could not be opened
        NoMaster,  // its first line does not name the columns: nothing was taken
        CutShort,  // it could not be read to its end; what came before counts
    };
    Outcome outcome = Outcome::Missing;
    std::uint64_t contracts = 0, passedOver = 0;  // lines
};

// Contracts beyond this many are passed over.
inline constexpr std::size_t kMaxContracts = 2000000;

// One thread at a time. Entries and the lists of answers stay where they are as long as the master lives and
// no contract is added; entries also beyond that.
class SecurityMaster {
 public:
    // Adds the contracts of a CSV file. Its first line names the columns, in any order, letter case and
    // unknown ones aside: exchange, securityid, securitytype and symbol must be there, expiry, optiontype,
    // strike and divisorkey may be. A line is passed over when one of the four is empty, when a text is too
    // long for its field or holds a zero byte, and when the strike is not a number.
    SecurityMasterLoad Load(IFiles& files, const std::filesystem::path& path);
    void Add(const SecurityMasterEntry& entry);
    // The terminal's clients, for the request of that kind.
    void AddClient(std::string_view client);

    // Requests of every kind of HostTypes.h but CtclEntries, of which the file knows nothing. Texts compare
    // letter case aside, strikes as numbers. Zero when there is no answer.
    MasterAnswer Answer(const MasterRequest& request) const;

    const std::deque<SecurityMasterEntry>& Contracts() const { return contracts_; }
    const std::vector<const char*>& Clients() const { return clients_; }

 private:
    // A node for each beginning of exchange, security type, symbol, expiry, option type, strike.
    struct Node {
        std::vector<const char*> next;  // the texts that may come next, in the order of the file
        TextMap<std::unique_ptr<Node>> children;
        const SecurityMasterEntry* contract = nullptr;
    };

    Node& Enter(Node& node, std::string_view text);
    const Node* Find(const MasterRequest& request, std::size_t depth) const;

    std::deque<SecurityMasterEntry> contracts_;  // grows without moving what others point to
    std::deque<std::string> texts_;              // of the lists
    Node root_;
    TextMap<const SecurityMasterEntry*> byID_;
    std::vector<const char*> clients_;
};

}  // namespace Dravel

// The terminal's security master and its clients, indexed so that each kind of master request is one look-up.
#pragma once

#include <cstddef>
#include <deque>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/HostTypes.h"

namespace Dravel::DevHost {

// Entries stay where they are until the terminal ends. The lists of an
// answer are a scratch copy that the next request overwrites with junk first: a plug-in that keeps one shows
// it. User-interface thread.
class MasterData {
 public:
    // One contract a line: exchange,securityid,securitytype,symbol,expiry,optiontype,strike,divisorkey.
    // False: no file.
    bool LoadContracts(const std::filesystem::path& file);
    // One client a line.
    bool LoadClients(const std::filesystem::path& file);
    // A contract for each of `count` numbers, for trying the plug-in with a large master.
    void MakeContracts(std::uint32_t count);

    MasterAnswer Answer(const MasterRequest& request);

    const std::deque<SecurityMasterEntry>& Contracts() const { return contracts_; }
    const std::vector<std::string>& Clients() const { return clients_; }

 private:
    using List = std::vector<std::string>;

    void Add(const SecurityMasterEntry& entry);
    void IndexContracts();
    void IndexContract(std::size_t index);
    void Enter(std::uint32_t kind, std::string_view path, std::string value);
    void SpoilScratch();
    MasterAnswer ListAnswer(const List& list);

    std::deque<SecurityMasterEntry> contracts_;  // grows without moving what the plug-in points to
    List clients_;
    std::unordered_map<std::string, List> lists_;           // kind, then the upper-cased texts of the request
    std::unordered_set<std::string> entered_;               // what lists_ holds already; only while loading
    std::unordered_map<std::string, std::size_t> entries_;  // kind and texts to an index of contracts_
    std::string scratchTexts_;
    std::string spoiltTexts_;  // the texts of the answer before, so that a late reader meets junk and not
                               // freed memory
    std::vector<const char*> scratchList_;
};

}  // namespace Dravel::DevHost

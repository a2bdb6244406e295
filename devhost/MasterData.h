// The terminal's security master and its clients.
#pragma once

#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "support/SecurityMaster.h"

namespace Dravel::DevHost {

// Answers out of a SecurityMaster, but through a scratch copy of its lists that the next request overwrites
// with junk first: a plug-in that keeps one shows it. User-interface thread.
class MasterData {
 public:
    // False: no file, or no security master.
    bool LoadContracts(const std::filesystem::path& file);
    // One client a line.
    bool LoadClients(const std::filesystem::path& file);
    // A contract for each of `count` numbers, for trying the plug-in with a large master.
    void MakeContracts(std::uint32_t count);

    MasterAnswer Answer(const MasterRequest& request);

    const std::deque<SecurityMasterEntry>& Contracts() const { return master_.Contracts(); }
    const std::vector<const char*>& Clients() const { return master_.Clients(); }

 private:
    void SpoilScratch();
    MasterAnswer ScratchCopy(const MasterAnswer& answer);

    SecurityMaster master_;
    std::string scratchTexts_;
    std::string spoiltTexts_;  // the texts of the answer before, so that a late reader meets junk and not
                               // freed memory
    std::vector<const char*> scratchList_;
};

}  // namespace Dravel::DevHost

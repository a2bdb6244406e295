// The clients for whom trades may be booked.
#pragma once

#include <string_view>

#include "formatset/TextHash.h"
#include "host/Host.h"
#include "records/TradeRecord.h"

namespace Dravel {

// Identifiers count as a record can hold them: those that differ only behind its capacity are one. The empty
// one is never listed. User-interface thread.
class ClientList {
 public:
    void Add(std::string_view id) {
        id = Cut(id);
        if (!id.empty() && !ids_.contains(id)) ids_.emplace(id);
    }
    bool Holds(std::string_view id) const { return ids_.contains(Cut(id)); }
    std::size_t Size() const { return ids_.size(); }

    // Asks the terminal for its clients and adds them.
    void AddClientsOf(IHost& host) {
        const MasterAnswer answer = host.Ask(master::Clients, {});
        for (std::uint32_t i = 0; answer.list != nullptr && i < answer.count; ++i) {
            if (answer.list[i] != nullptr) Add(answer.list[i]);
        }
    }

 private:
    static std::string_view Cut(std::string_view id) { return id.substr(0, sizeof(TradeRecord::clientID)); }
    TextSet ids_;
};

}  // namespace Dravel

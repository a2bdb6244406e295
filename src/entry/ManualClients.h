// Clients that the terminal does not know and the user accepted, kept in ManualClientId.txt.
#pragma once

#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>

#include "entry/ClientList.h"
#include "host/Host.h"
#include "platform/Files.h"
#include "support/KeptFile.h"

namespace Dravel {

// The longest file that is read, in bytes: some ten million identifiers.
inline constexpr std::size_t kManualClientsLimit = std::size_t{256} * 1024 * 1024;

// One identifier a line, in ascending byte order. User-interface thread. Nothing here fails aloud: a file
// that cannot be opened is an empty one, but it is not replaced either.
//
// Several terminals may share the file: a save reads it again and writes what either side has.
class ManualClients {
 public:
    // `folder` is that of the format sets; it is made when missing.
    ManualClients(IFiles& files, IHost& host, const std::filesystem::path& folder)
        : files_(files), host_(host), file_(files, folder / "ManualClientId.txt", kManualClientsLimit) {}

    // Reads the file, lists each identifier as it stands in its line, and announces it to the terminal: with
    // every book anew, and as often as the file has it.
    void Load();
    // Reads the file, writes it anew with what it holds and what is listed, and announces each identifier to
    // the terminal. As long as it cannot be read or written it is left alone, and Retry tries again.
    //
    // Both only create the file, empty, when it is not there: a save then keeps nothing until the next one.
    // Deliberate.
    void Save();
    // Every two seconds: the load or the save that failed.
    void Retry();

    void Add(std::string_view id);
    // Whether the identifier, as a record can hold it, is listed.
    bool Holds(std::string_view id) const { return known_.Holds(id); }
    const std::set<std::string, std::less<>>& Ids() const { return ids_; }

 private:
    bool FileIsThere();
    bool Read(bool announce);
    void Announce(const std::string& id);

    IFiles& files_;
    IHost& host_;
    KeptFile file_;
    std::set<std::string, std::less<>> ids_;
    ClientList known_;                       // the same ones, as records hold them
    bool unread_ = false, unsaved_ = false;  // the last load or save failed
};

}  // namespace Dravel

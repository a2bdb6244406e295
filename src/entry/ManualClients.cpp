// Loads, saves and announces the manual clients.
#include "entry/ManualClients.h"

#include <memory>

#include "formatset/TextFile.h"
#include "message/TagMessageWriter.h"
#include "message/Tags.h"

namespace Dravel {

bool ManualClients::FileIsThere() {
    files_.MakeFolders(path_.parent_path());  // a failure shows when the file is opened
    FileInfo info;
    const FileFault fault = files_.Info(path_, info).fault;
    if (fault != FileFault::NotFound && fault != FileFault::PathNotFound) return true;
    std::unique_ptr<IFile> file;
    files_.Open(path_, FileMode::Create, FileShare::DenyNone, file);
    return false;
}

void ManualClients::Load() {
    std::string text;
    unread_ = FileIsThere() && !ReadTextFile(files_, path_, text, kManualClientsLimit);
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view id = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (id.empty()) continue;
        Add(id);
        Announce(std::string(id));
    }
}

void ManualClients::Save() {
    if (!FileIsThere()) return;
    if (unread_) Load();
    if (unread_) return;
    std::string text;
    for (const std::string& id : ids_)
        text.append(id) += '\n';
    if (!WriteTextFile(files_, path_, text)) return;
    for (const std::string& id : ids_)
        Announce(id);
}

void ManualClients::Add(std::string_view id) {
    if (id.empty()) return;
    ids_.emplace(id);
    known_.Add(id);
}

void ManualClients::Announce(const std::string& id) {
    if (!host_.Listens()) return;
    CTagMessageWriter frame(msg::ManualClient);
    frame.AppendText(tag::ClientID, id.c_str(), sizeof(TradeRecord::clientID), false);
    host_.Send(frame);
}

}  // namespace Dravel

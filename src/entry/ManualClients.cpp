// Loads, saves and announces the manual clients.
#include "entry/ManualClients.h"

#include <memory>

#include "formatset/TextFile.h"
#include "message/TagMessageWriter.h"
#include "message/Tags.h"

namespace Dravel {

bool ManualClients::FileIsThere() {
    const std::filesystem::path& path = file_.Path();
    files_.MakeFolders(path.parent_path());  // a failure shows when the file is opened
    FileInfo info;
    const FileFault fault = files_.Info(path, info).fault;
    if (fault != FileFault::NotFound && fault != FileFault::PathNotFound) return true;
    std::unique_ptr<IFile> file;
    files_.Open(path, FileMode::Create, FileShare::DenyNone, file);
    return false;
}

void ManualClients::Load() {
    unread_ = FileIsThere() && !Read(true);
}

// False: what it holds is not known. A file that is too long counts so.
bool ManualClients::Read(bool announce) {
    const KeptFile::State state = file_.Try([&](std::string_view rest) {
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find('\n'), rest.size());
            const std::string_view id = rest.substr(0, end);
            rest.remove_prefix(std::min(end + 1, rest.size()));
            if (id.empty()) continue;
            Add(id);
            if (announce) Announce(std::string(id));
        }
        return true;
    });
    return state == KeptFile::State::Read || state == KeptFile::State::Missing;
}

// The lock holds off another terminal between the reading and the writing.
void ManualClients::Save() {
    unsaved_ = false;
    if (!FileIsThere()) return;
    unsaved_ = true;
    std::filesystem::path lockPath = file_.Path();
    lockPath += ".lock";
    std::unique_ptr<IFile> lock;
    if (files_.OpenLock(lockPath, lock).fault == FileFault::InUse) return;
    if (!Read(unread_)) return;
    unread_ = false;
    std::string text;
    for (const std::string& id : ids_)
        text.append(id) += '\n';
    if (!file_.Write(text, true)) return;
    unsaved_ = false;
    for (const std::string& id : ids_)
        Announce(id);
}

void ManualClients::Retry() {
    if (unsaved_) {
        Save();
    } else if (unread_) {
        Load();
    }
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

// The system's dialogs to open and save a file. They leave the working folder alone.
#pragma once

#include <string>

namespace Dravel {

struct FileDialogParams {
    bool save = false;
    bool overwritePrompt = true;  // when saving
    std::wstring title;           // empty: the system's
    std::wstring filter;          // "DravelBook|*.CSV", pairs parted by "|"
    std::wstring extension;       // with or without dot; appended when the user types none
    std::wstring folder;          // where to begin; empty: the system's choice
    std::wstring path;            // in: the name proposed, may hold the folder too; out: the full path chosen
};

// True when the user confirmed; else `params.path` is unchanged. UI thread.
bool FileDialog(void* owner, FileDialogParams& params);

// A path as the user typed or pasted it: what is pasted from a file manager stands in quotes.
std::wstring Unquoted(std::wstring path);

}  // namespace Dravel

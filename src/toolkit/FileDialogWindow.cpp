#include <algorithm>
#include <cwchar>
#include <vector>

#include "toolkit/FileDialog.h"
#include "toolkit/ModalLoop.h"
#include "toolkit/win32/CommonDialogs.h"

namespace Dravel {
namespace {

constexpr std::size_t kMaxPath = 32768;

const wchar_t* OrNull(const std::wstring& text) {
    return text.empty() ? nullptr : text.c_str();
}

bool Run(const CommonDialogs& dialogs, OPENFILENAMEW& request, bool save) {
    return save ? dialogs.SaveFileName(request) : dialogs.OpenFileName(request);
}

}  // namespace

bool FileDialog(void* owner, FileDialogParams& params) {
    std::wstring filter = params.filter + L'|';  // pairs end with a zero each, the list with another
    std::replace(filter.begin(), filter.end(), L'|', L'\0');
    const std::wstring extension = params.extension.substr(params.extension.starts_with(L'.') ? 1 : 0);
    std::vector<wchar_t> path(kMaxPath);
    std::copy_n(params.path.begin(), std::min(params.path.size(), kMaxPath - 1), path.begin());
    OPENFILENAMEW request{};
    request.lStructSize = sizeof request;
    request.hwndOwner = static_cast<HWND>(owner);
    request.lpstrFilter = params.filter.empty() ? nullptr : filter.c_str();
    request.lpstrFile = path.data();
    request.nMaxFile = static_cast<DWORD>(path.size());
    request.lpstrInitialDir = OrNull(params.folder);
    request.lpstrTitle = OrNull(params.title);
    request.lpstrDefExt = OrNull(extension);
    request.Flags = OFN_EXPLORER | OFN_NOCHANGEDIR | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST;
    request.Flags |= params.save ? (params.overwritePrompt ? OFN_OVERWRITEPROMPT : 0) : OFN_FILEMUSTEXIST;
    const ModalLoop modal;
    const CommonDialogs dialogs;
    bool chosen = Run(dialogs, request, params.save);
    if (!chosen && dialogs.LastError() == FNERR_INVALIDFILENAME) {
        path[0] = 0;  // the proposal can't be a file's name: ask without it
        chosen = Run(dialogs, request, params.save);
    }
    if (chosen) params.path = path.data();
    return chosen;
}

std::wstring Unquoted(std::wstring path) {
    const auto first = path.find_first_not_of(L" \t\"");
    if (first == std::wstring::npos) return {};
    return path.substr(first, path.find_last_not_of(L" \t\"") - first + 1);
}

}  // namespace Dravel

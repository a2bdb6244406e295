// Commands about files: what the plug-in writes, and what it finds when it starts.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "Commands.h"
#include "Dialogs.h"
#include "Stage.h"
#include "Text.h"

namespace Dravel::DevHost {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFileName = "1148";

bool ReadBytes(const fs::path& file, std::string& bytes) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return false;
    bytes.assign(std::istreambuf_iterator<char>(in), {});
    return true;
}

fs::path OfProgram(const std::string& path) {
    return fs::path(FromUtf8(path)).make_preferred();
}

// The file may still be written: it is read until it holds the text.
void ExpectInFile(Stage& stage, const Words& words) {
    std::string bytes;
    const auto holds = [&] {
        return ReadBytes(OfProgram(words[0]), bytes) && bytes.find(words[1]) != bytes.npos;
    };
    if (!stage.Holds(holds, stage.limit)) Fail("it does not hold it; it says: " + bytes.substr(0, 2000));
}

// The first difference is what one wants to know.
void SameFile(Stage& stage, const Words& words) {
    std::string bytes, expected;
    stage.Until([&] { return ReadBytes(stage.File(words[0]), bytes); }, "there is no such file");
    if (!ReadBytes(stage.scriptFolder / OfProgram(words[1]), expected) &&
        !ReadBytes(stage.File(words[1]), expected))
        Fail("nothing to compare it with");
    if (bytes == expected) return;
    const auto [here, there] = std::mismatch(bytes.begin(), bytes.end(), expected.begin(), expected.end());
    const auto at = static_cast<std::size_t>(here - bytes.begin()), from = at < 40 ? 0 : at - 40;
    Fail("it differs at byte " + NumberText(at) + ": \"" + bytes.substr(from, 80) + "\" instead of \"" +
         expected.substr(std::min(from, expected.size()), 80) + '"');
}

void PutFile(Stage&, const Words& words) {
    const fs::path path = OfProgram(words[0]);
    if (path.has_parent_path()) fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << words[1];
}

void ReplaceInFile(Stage&, const Words& words) {
    const fs::path path = OfProgram(words[0]);
    std::string bytes;
    if (!ReadBytes(path, bytes)) Fail("there is no such file");
    const std::size_t at = bytes.find(words[1]);
    if (at == bytes.npos) Fail("it does not hold the text");
    bytes.replace(at, words[1].size(), words[2]);
    if (!(std::ofstream(path, std::ios::binary) << bytes).flush()) Fail("the file cannot be written");
}

void CopyFileCommand(Stage& stage, const Words& words) {
    std::string bytes;
    stage.Until([&] { return ReadBytes(OfProgram(words[0]), bytes); }, "there is no such file");
    std::ofstream(stage.File(words[1]), std::ios::binary) << bytes;
}

void RemoveFile(Stage&, const Words& words) {
    std::error_code error;
    fs::remove_all(OfProgram(words[0]), error);
    if (error) Fail(error.message());
}

// Fills in the system's open or save dialog and confirms it.
void Confirm(Stage& stage, std::filesystem::path file) {
    HWND dialog = nullptr, name = nullptr;
    stage.Until(
        [&] {
            dialog = FindDialog(L"");
            name = dialog ? FindControl(dialog, kFileName) : nullptr;
            return name != nullptr;
        },
        "no file dialog");
    const std::wstring path = file.make_preferred().native();
    SendMessageW(name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    // It loses a press that comes while it is still filling its list.
    const auto taken = [&] { return !IsWindowVisible(dialog) || FindDialog(L"") != dialog; };
    for (int i = 0; i < 10 && !taken(); ++i) {
        PressButton(dialog, "OK");
        stage.Holds(taken, 1000);
    }
    if (!taken()) Fail("the dialog stays");
}

// A file of the folder for results.
void SaveAs(Stage& stage, const Words& words) {
    Confirm(stage, stage.File(words[0]));
}

void FileDialog(Stage& stage, const Words& words) {
    Confirm(stage, stage.scriptFolder / FromUtf8(words[0]));
}

// As a program that writes the file and may delete it, or as one that lets nobody else near it.
HANDLE heldFile = INVALID_HANDLE_VALUE;

void ReleaseFile(Stage&, const Words&) {
    if (heldFile != INVALID_HANDLE_VALUE) CloseHandle(heldFile);
    heldFile = INVALID_HANDLE_VALUE;
}

void HoldFile(Stage& stage, const Words& words) {
    ReleaseFile(stage, words);
    const bool alone = words.size() > 1 && words[1] == "alone";
    if (words.size() > 1 && !alone) Fail("\"alone\" or nothing");
    const DWORD share = alone ? 0u : FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    heldFile = CreateFileW(OfProgram(words[0]).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, share, nullptr,
                           OPEN_EXISTING, 0, nullptr);
    if (heldFile == INVALID_HANDLE_VALUE) Fail("the file cannot be opened");
}

// As a program that lets nobody else near the file: a virus scanner, a backup. Several at a time.
std::map<std::wstring, HANDLE> kept;

void LetGo(Stage&, const Words& words) {
    const auto found = kept.find(OfProgram(words[0]).native());
    if (found == kept.end()) Fail("it is not held");
    CloseHandle(found->second);
    kept.erase(found);
}

void Hold(Stage& stage, const Words& words) {
    const std::wstring path = OfProgram(words[0]).native();
    HANDLE file = INVALID_HANDLE_VALUE;
    stage.Until(
        [&] {
            file = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0,
                               nullptr);
            return file != INVALID_HANDLE_VALUE;
        },
        "the file cannot be opened");
    kept.insert({path, file});
}

// Another terminal in the same folder, which carries out a script of its own.
HANDLE otherTerminal = nullptr;

void StartTerminal(Stage& stage, const Words& words) {
    wchar_t self[MAX_PATH];
    if (GetModuleFileNameW(nullptr, self, MAX_PATH) == MAX_PATH) Fail("the program's path is too long");
    const fs::path out = stage.File("other");
    fs::create_directories(out);
    std::wstring line = L"\"" + std::wstring(self) + L"\" --script \"" +
                        (stage.scriptFolder / OfProgram(words[0])).native() + L"\" --out \"" + out.native() +
                        L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(self, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &made))
        Fail("it does not start");
    CloseHandle(made.hThread);
    otherTerminal = made.hProcess;
}

void WaitTerminal(Stage& stage, const Words&) {
    if (!otherTerminal) Fail("there is none");
    stage.Until([] { return WaitForSingleObject(otherTerminal, 0) == WAIT_OBJECT_0; }, "it still runs");
    DWORD code = 1;
    GetExitCodeProcess(otherTerminal, &code);
    CloseHandle(otherTerminal);
    otherTerminal = nullptr;
    if (code != 0) Fail("its script failed, see other\\script.log");
}

constexpr CommandEntry kCommands[] = {
    {"expect-in-file", "PATH TEXT", 2, 2, ExpectInFile},
    {"same-file", "FILE EXPECTED", 2, 2, SameFile},
    {"put-file", "PATH TEXT", 2, 2, PutFile},
    {"replace-in-file", "PATH TEXT WITH", 3, 3, ReplaceInFile},
    {"remove-file", "PATH", 1, 1, RemoveFile},
    {"copy-file", "PATH FILE", 2, 2, CopyFileCommand},
    {"save-as", "FILE", 1, 1, SaveAs},
    {"file-dialog", "PATH", 1, 1, FileDialog},
    {"hold-file", "PATH [alone]", 1, 2, HoldFile},
    {"start-terminal", "SCRIPT", 1, 1, StartTerminal},
    {"wait-terminal", "", 0, 0, WaitTerminal},
    {"release-file", "", 0, 0, ReleaseFile},
    {"hold", "PATH", 1, 1, Hold},
    {"let-go", "PATH", 1, 1, LetGo},
};

}  // namespace

std::span<const CommandEntry> FileCommands() {
    return kCommands;
}

}  // namespace Dravel::DevHost

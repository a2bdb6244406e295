// Waiting and reporting for scripts.
#include "Stage.h"

#include <algorithm>

#include "Text.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

constexpr DWORD kPoll = 5;  // milliseconds between two looks

bool HasNew(const std::vector<HWND>& before, const std::vector<HWND>& now) {
    return std::any_of(now.begin(), now.end(), [&](HWND window) {
        return std::find(before.begin(), before.end(), window) == before.end();
    });
}

}  // namespace

Stage::Stage(Terminal& terminal, const std::filesystem::path& out)
    : terminal_(terminal), out_(out.empty() ? terminal.Folder() : out) {
    std::error_code ignored;
    std::filesystem::create_directories(out_, ignored);
    report_.open(out_ / "script.log", std::ios::binary);
}

std::filesystem::path Stage::File(std::string_view name) const {
    return out_ / std::filesystem::path(FromUtf8(name));
}

bool Stage::OnUi(std::function<void()> work) {
    const auto before = Dialogs();
    auto task = std::make_shared<Terminal::Task>();
    task->work = std::move(work);
    terminal_.Run(task);
    Until([&] { return task->done || HasNew(before, Dialogs()); }, "the terminal does not answer");
    return task->done;
}

bool Stage::Holds(const std::function<bool()>& condition, std::uint32_t milliseconds) {
    const std::uint64_t end = GetTickCount64() + milliseconds;
    while (!condition()) {
        if (GetTickCount64() >= end) return false;
        Sleep(kPoll);
    }
    return true;
}

void Stage::Until(const std::function<bool()>& condition, const std::string& what) {
    if (!Holds(condition, limit)) Fail(what + " within " + NumberText(limit) + " ms");
}

void Stage::Send(Input events) {
    OnUi([events = std::move(events)]() mutable {
        SendInput(static_cast<UINT>(events.size()), events.data(), sizeof(INPUT));
    });
    InputTaken();
}

void Stage::InputTaken() {
    Until([this] { return AskUi<bool>([] { return (HIWORD(GetQueueStatus(QS_INPUT)) & QS_INPUT) == 0; }); },
          "the keys or clicks are not taken");
}

void Stage::Report(std::string_view line) {
    const std::string text = TimeOfDay() + ' ' + std::string(line) + '\n';
    report_ << text << std::flush;
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD written = 0;
    if (output && output != INVALID_HANDLE_VALUE)
        WriteFile(output, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

}  // namespace Dravel::DevHost

// What a script's commands stand on: work on the user-interface thread, waiting with a limit, and reports.
#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "Keys.h"
#include "Resources.h"
#include "Terminal.h"
#include "Watcher.h"

namespace Dravel::DevHost {

// Ends the script; `what` is said with the line of the command.
struct ScriptFailure {
    std::string what;
};
// Ends the script as its last line does.
struct ScriptEnd {};
[[noreturn]] inline void Fail(std::string what) {
    throw ScriptFailure{std::move(what)};
}

// Script thread only. Nothing here waits without a limit and nothing sleeps for a fixed time.
class Stage {
 public:
    Stage(Terminal& terminal, const std::filesystem::path& out);

    Terminal& Host() { return terminal_; }
    Watcher& Watch() { return watcher_; }
    // A file that the script names: absolute, or in the folder for results.
    std::filesystem::path File(std::string_view name) const;
    // A file that the script brings along: absolute, or in the folder of the script.
    std::filesystem::path scriptFolder;

    // Runs `work` there and returns when it has returned or when it has opened a dialog, which is then up.
    // True in the first case.
    bool OnUi(std::function<void()> work);
    // The same for work that gives an answer; nothing as long as its dialog is up.
    template <class Value>
    Value AskUi(std::function<Value()> work) {
        auto value = std::make_shared<Value>();
        return OnUi([value, work = std::move(work)] { *value = work(); }) ? *value : Value{};
    }
    // Polls until `condition` holds; fails with `what` after the limit.
    void Until(const std::function<bool()>& condition, const std::string& what);
    bool Holds(const std::function<bool()>& condition, std::uint32_t milliseconds);
    // Keys and clicks; returns once the user-interface thread has taken them. Sent from that thread: it takes
    // the keyboard's state over from the display whenever a window gets the focus or the mouse, and a key
    // that was held for a moment only would be let go in the middle.
    void Send(Input events);
    // Returns once the keys and clicks sent so far have been taken by the user-interface thread.
    void InputTaken();

    void Report(std::string_view line);

    std::uint32_t limit = 20000;  // milliseconds that a wait may take
    std::size_t framesFrom = 0;   // entries of the log before this one are not counted
    std::map<std::string, LARGE_INTEGER> timings;
    ResourceCount resources;
    std::string grid;  // the grid as last dumped

 private:
    Terminal& terminal_;
    std::filesystem::path out_;
    std::ofstream report_;
    Watcher watcher_;
};

}  // namespace Dravel::DevHost

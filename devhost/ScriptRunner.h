// Runs a script beside the user-interface thread and ends the program with its result.
#pragma once

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <thread>

namespace Dravel::DevHost {

class Terminal;

// The thread of the script. When it succeeds the frame is closed as a person closes it and the message loop
// ends; when it fails the process ends at once with code 1, whatever dialog is up.
class ScriptRunner {
 public:
    ScriptRunner(Terminal& terminal, std::filesystem::path script, std::filesystem::path out);
    ~ScriptRunner();
    int ExitCode() const { return exitCode_; }

 private:
    void Run();

    Terminal& terminal_;
    std::filesystem::path script_, out_;
    DWORD uiThread_;
    std::atomic<int> exitCode_{1};
    std::thread thread_;
};

}  // namespace Dravel::DevHost

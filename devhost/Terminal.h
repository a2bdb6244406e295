// The terminal itself: everything that lives as long as the process, and what menu and script both ask of it.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "FrameLog.h"
#include "MasterData.h"
#include "Plugin.h"
#include "Unfriendly.h"

struct SelectedContractReply;

namespace Dravel::DevHost {

class FrameWindow;

// What the command line asked for; empty paths: looked for beside the program.
struct Options {
    std::filesystem::path script, out, plugin, master, clients;
};

// Made once by the main function. User-interface thread, but for Run and the frame log.
class Terminal {
 public:
    explicit Terminal(Options options);
    ~Terminal();

    const Options& Asked() const { return options_; }
    // Folder of the program, also the working folder at the start.
    const std::filesystem::path& Folder() const { return folder_; }
    FrameLog& Log() { return log_; }
    MasterData& Master() { return master_; }
    MasterMood& Mood() { return mood_; }
    CallbackMood& Callbacks() { return callbacks_; }
    PaintWatch& Paints() { return paints_; }
    Plugin& Loaded() { return plugin_; }

    bool CreateFrame();
    HWND Frame() const { return frame_; }
    // Whether closing the frame ends the program; a script that makes a new frame says no.
    bool endsWithFrame = true;
    void FrameGone();

    // Runs `work` on the user-interface thread, also from within a modal loop. `done` is set when it has
    // returned.
    struct Task {
        std::function<void()> work;
        std::atomic<bool> done{false};
    };
    void Run(const std::shared_ptr<Task>& task);

    bool LoadPlugin(std::string& error);
    // Destroys the bar's window, then frees the library.
    void UnloadPlugin();
    bool OpenBook();
    // Sends `code` with fields as in FrameText.h. Codes of the broadcast subscription go there, `broadcast`
    // forces it.
    bool Send(std::uint16_t code, std::vector<std::string> fields, std::string& error,
              bool broadcast = false);
    // A trade of the master's first contracts, a new one each time.
    bool SendTrade(std::string& error);

    // What the main loop does when it has handled its message: crash on purpose.
    void (*crash)() = nullptr;

    // Callbacks
    std::uint32_t BarID(const wchar_t* title, const wchar_t* key);
    // Sends message 32042 out of the next call of GetPluginBarID, as a terminal does that pumps messages
    // there.
    bool reenterOnBarID = false;

 private:
    std::filesystem::path PluginPath() const;
    void LoadMaster();
    static void TakeReply(SelectedContractReply* reply);
    static LRESULT CALLBACK TaskProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    Options options_;
    std::filesystem::path folder_;
    FrameLog log_;
    MasterData master_;
    MasterMood mood_;
    CallbackMood callbacks_;
    PaintWatch paints_;
    Plugin plugin_;
    std::unique_ptr<FrameWindow> frameWindow_;
    HWND frame_ = nullptr;
    HWND tasks_ = nullptr;
    std::uint32_t tradesSent_ = 0;
    std::uint32_t barIDs_ = 0;
};

// The one terminal of the process, for the exported callbacks.
Terminal& TheTerminal();

}  // namespace Dravel::DevHost

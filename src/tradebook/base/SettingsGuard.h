// Stands between the settings and their file: nothing is taken for a default that is only out of reach.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "host/User.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "support/KeptFile.h"
#include "support/Log.h"
#include "tradebook/base/VELTPXMLSettings.h"

namespace Dravel {

// User-interface thread. Lives as long as the bar. Whoever has a timer calls Retry every kRetryPause
// milliseconds; what the user changed before the file could be read is laid over what it says then.
class SettingsGuard {
 public:
    static constexpr std::uint32_t kRetryPause = 2000;  // milliseconds
    static constexpr std::uint64_t kPatience = 10000;   // until the user is asked

    SettingsGuard(IFiles& files, const IClock& clock, ILog& log, CVELTPXMLSettings& settings,
                  std::filesystem::path path)
        : clock_(clock), log_(log), settings_(settings), file_(files, std::move(path)) {}
    // The last try to write what still waits.
    ~SettingsGuard();
    SettingsGuard(const SettingsGuard&) = delete;
    SettingsGuard& operator=(const SettingsGuard&) = delete;

    // The first try. Until the settings are known, nothing that they decide may be done.
    KeptFile::State Open();
    bool Known() const { return file_.Known(); }
    KeptFile::State State() const { return file_.Now(); }
    // Called once, when settings that Open did not get become known: from within Retry or Ask.
    void WhenKnown(std::function<void()> known) { known_ = std::move(known); }

    // Reads what could not be read, writes what could not be written.
    void Retry();
    // Whether the user is to be asked now; once an opening. To be asked by Ask, in posted work.
    bool AskIsDue() const;
    // Returns when the user has answered or the settings could be read meanwhile. On Yes the defaults count,
    // and the file is left alone until the next opening.
    void Ask(IUser& user);

    // Writes the settings now, or as soon as their file can be reached. When it is left alone they stay in
    // memory.
    void Save();
    // What the user is to be told about the file; empty: nothing, or it was handed out before.
    std::string TakeNotice();

 private:
    void Read();
    bool Take(const std::string& text);
    FileStatus Write(bool patient);

    const IClock& clock_;
    ILog& log_;
    CVELTPXMLSettings& settings_;
    KeptFile file_;
    QuestionEnd question_;
    std::function<void()> known_;
    std::uint64_t since_ = 0;  // when the first try failed, by the clock's ticks
    bool asked_ = false;
    bool unsaved_ = false;  // a save waits for the file
    std::string notice_;
};

}  // namespace Dravel

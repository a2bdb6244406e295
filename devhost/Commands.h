// The commands of a script: one table a subject, each entry with its arguments as the documentation shows
// them.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Dravel::DevHost {

class Stage;
using Words = std::vector<std::string>;

struct CommandEntry {
    std::string_view name;
    const char* arguments;
    std::size_t least, most;  // number of words behind the name
    void (*run)(Stage&, const Words&);
};

std::span<const CommandEntry> PluginCommands();
std::span<const CommandEntry> DialogCommands();
std::span<const CommandEntry> GridCommands();
std::span<const CommandEntry> BarCommands();
std::span<const CommandEntry> HeaderCommands();
std::span<const CommandEntry> CheckCommands();
std::span<const CommandEntry> FileCommands();
std::span<const CommandEntry> InputCommands();
// nullptr when there is no command of this name.
const CommandEntry* FindCommand(std::string_view name);

// Closes the main frame by WM_CLOSE and waits until it is gone.
void CloseFrame(Stage& stage);
// A picture of the screen and the log of frames into the folder for results, after a failure.
void SaveEvidence(Stage& stage);

}  // namespace Dravel::DevHost

// The system's message box style out of the plug-in's own numbers.
#pragma once

#include <cstdint>

namespace Dravel {

// `buttons` and `icon` are numbers of the enums of host/User.h; others add nothing. `extra` are further style
// bits of the system's, added (not or'ed) as everything else is.
std::uint32_t MessageBoxStyle(std::uint32_t buttons, std::uint32_t icon, std::uint32_t extra,
                              bool rightAligned);

}  // namespace Dravel

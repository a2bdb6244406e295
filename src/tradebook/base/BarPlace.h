// Where the user left a bar, as the settings keep it.
#pragma once

#include <string_view>

#include "toolkit/DockState.h"

class CKRVPRegistry;

namespace Dravel {

// The values Dock, Left, Top, Width and Height under `key`, each only when present and a number; nothing is
// brought into range here. False: the key does not exist.
bool LoadBarPlace(CKRVPRegistry& settings, std::string_view key, DockState& place);
bool SaveBarPlace(CKRVPRegistry& settings, std::string_view key, const DockState& place);

}  // namespace Dravel

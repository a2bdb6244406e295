#include "tradebook/base/BarPlace.h"

#include "toolkit/Registry.h"

namespace Dravel {

namespace {

constexpr char kDock[] = "Dock";
constexpr struct {
    const char* name;
    int DockState::*field;
} kNumbers[] = {
    {"Left", &DockState::left},
    {"Top", &DockState::top},
    {"Width", &DockState::width},
    {"Height", &DockState::height},
};

}  // namespace

bool LoadBarPlace(CKRVPRegistry& settings, std::string_view key, DockState& place) {
    if (!settings.Open(key)) return false;
    std::int32_t side = 0;
    // An unknown side leaves the one that the caller asks for.
    if (settings.ReadInteger(kDock, side) && side >= 0 && side <= static_cast<int>(DockSide::Bottom))
        place.side = static_cast<DockSide>(side);
    for (const auto& [name, field] : kNumbers) {
        std::int32_t value = 0;
        if (settings.ReadInteger(name, value)) place.*field = value;
    }
    return true;
}

bool SaveBarPlace(CKRVPRegistry& settings, std::string_view key, const DockState& place) {
    if (!settings.CreateKey(key)) return false;
    bool written = settings.WriteInteger(kDock, static_cast<std::int32_t>(place.side));
    for (const auto& [name, field] : kNumbers)
        written = settings.WriteInteger(name, place.*field) && written;
    return written;
}

}  // namespace Dravel

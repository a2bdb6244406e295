#include "tradebook/base/VELTSDockingControlBar.h"

void CVELTSDockingControlBar::LoadProperties(std::string_view key) {
    loadingProperties_ = true;
    OnLoadProperties(key);
    loadingProperties_ = false;
    propertiesLoaded_ = true;
}

void CVELTSDockingControlBar::SaveProperties(std::string_view key) {
    if (propertiesLoaded_ && !loadingProperties_) OnSaveProperties(key);
}

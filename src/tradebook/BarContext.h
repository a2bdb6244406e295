// What the bar and its grid need of the world.
#pragma once

#include "host/Host.h"
#include "host/User.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "support/DataFolder.h"
#include "support/Log.h"
#include "tradebook/EntryPort.h"
#include "tradebook/base/NoticeList.h"
#include "tradebook/base/SettingsGuard.h"
#include "tradebook/base/VELTPXMLSettings.h"

namespace Dravel {

// All outlive the bar.
struct BarContext {
    IHost& host;
    IUser& user;
    IEntry& entry;
    IFiles& files;
    IClock& clock;
    const DataFolder& folder;
    CVELTPXMLSettings& settings;
    ILog& log;
    NoticeList& notices;
    SettingsGuard& guard;  // of the settings

    // Writes the settings to their file. A failure is logged; nothing is shown, the settings stay in memory,
    // and it is tried again.
    void SaveSettings() const { guard.Save(); }
};

}  // namespace Dravel

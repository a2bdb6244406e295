// Which message of the terminal goes to which handler.
#pragma once

class CTagMessageReader;

namespace Dravel {

// What the plug-in does for the messages that are addressed to it. User-interface thread; readers stand
// behind the message code.
class IPluginHandlers {
 public:
    virtual ~IPluginHandlers() = default;
    // Guards itself against being asked again while it runs: making the bar pumps messages.
    virtual void ShowBar() = 0;
    virtual void SelectedContract(CTagMessageReader& query) = 0;
    virtual void TradeFromHost(CTagMessageReader& trade) = 0;
    virtual void EntryQuery() = 0;
    virtual void PendingItems() = 0;
    virtual void AskToSave() = 0;
};

// A broadcast that the terminal has opened already.
void DispatchBroadcast(CTagMessageReader& reader);

// Opens the frame; one that cannot be opened reaches nobody.
void DispatchPluginMessage(CTagMessageReader& reader, IPluginHandlers& handlers);

}  // namespace Dravel

#include "plugin/MessageDispatch.h"

#include <algorithm>
#include <iterator>

#include "message/TagMessageReader.h"
#include "message/Tags.h"

namespace Dravel {

namespace {

// For messages whose meaning is the terminal's own affair: their fields are stepped over.
void ConsumeFields(CTagMessageReader& reader) {
    while (reader.NextTag()) {
        reader.SkipValue();
    }
}

constexpr msg::Code kHandledBroadcasts[] = {msg::Broadcast113, msg::Broadcast127, msg::Broadcast270,
                                            msg::Broadcast30026};

struct PluginRoute {
    msg::Code code;
    void (*handle)(CTagMessageReader&, IPluginHandlers&);
};
constexpr PluginRoute kPluginRoutes[] = {
    {msg::ShowBar, [](CTagMessageReader&, IPluginHandlers& to) { to.ShowBar(); }},
    {msg::SelectedContract,
     [](CTagMessageReader& query, IPluginHandlers& to) { to.SelectedContract(query); }},
    {msg::TradeFromHost, [](CTagMessageReader& trade, IPluginHandlers& to) { to.TradeFromHost(trade); }},
    {msg::EntryQuery, [](CTagMessageReader&, IPluginHandlers& to) { to.EntryQuery(); }},
    {msg::PendingItems, [](CTagMessageReader&, IPluginHandlers& to) { to.PendingItems(); }},
    {msg::AskToSave, [](CTagMessageReader&, IPluginHandlers& to) { to.AskToSave(); }},
    {msg::Plugin30012, [](CTagMessageReader& reader, IPluginHandlers&) { ConsumeFields(reader); }},
    {msg::Plugin30014, [](CTagMessageReader& reader, IPluginHandlers&) { ConsumeFields(reader); }},
};

}  // namespace

void DispatchBroadcast(CTagMessageReader& reader) {
    const auto* end = std::end(kHandledBroadcasts);
    if (std::find(std::begin(kHandledBroadcasts), end, reader.MessageCode()) != end) {
        ConsumeFields(reader);
    } else {
        reader.SkipValue();
    }
}

void DispatchPluginMessage(CTagMessageReader& reader, IPluginHandlers& handlers) {
    if (!reader.Open().opened) return;
    const auto* end = std::end(kPluginRoutes);
    const auto* route = std::find_if(std::begin(kPluginRoutes), end, [&reader](const PluginRoute& candidate) {
        return candidate.code == reader.MessageCode();
    });
    if (route != end) {
        route->handle(reader, handlers);
    } else {
        reader.SkipValue();
    }
}

}  // namespace Dravel

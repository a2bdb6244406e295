// How the plug-in introduces itself: who it is, its bar, and the message codes that it wants to receive.
#pragma once

#include <array>
#include <cstdint>

class CTagMessageWriter;
class CTagReceiveQueue;

namespace Dravel {

// The plug-in's entries as frames carry them: the terminal calls back through these.
struct EntryAddresses {
    std::uint64_t dravelBar = 0;
    std::uint64_t onMessage = 0;
    std::uint64_t onPluginMessage = 0;
};

// Values of tags 5064, 5065, 5066 and 126, in this order.
using BarOptions = std::array<std::uint8_t, 4>;

// Appends the identification to the terminal's queue and, when `flag` is 0, the bar and the three
// subscriptions. Each frame is appended under the queue's lock as soon as it is built; one that the queue
// cannot take is dropped, the others are appended all the same.
void AppendRegistration(CTagReceiveQueue& queue, std::uint8_t flag, const EntryAddresses& entries);

// The fields of the bar registration behind its message code; `options` may be null.
void BuildBarRegistration(CTagMessageWriter& frame, std::uint64_t dravelBar, const BarOptions* options);

}  // namespace Dravel

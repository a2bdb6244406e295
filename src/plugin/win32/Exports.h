// The four entries that the library exports.
#pragma once

#include <cstdint>

class CTagMessageReader;
class CTagReceiveQueue;

extern "C" {
void GetDllInfo(CTagReceiveQueue* output, std::uint8_t* flag);
void DravelBar();
void OnMessage(CTagMessageReader* reader);
void OnPluginMessage(CTagMessageReader* reader);
}

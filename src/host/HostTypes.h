// Structures that cross the boundary to the terminal as they stand. Texts are in the system's ANSI code page
// and zero-terminated unless they fill their capacity.
#pragma once

#include <cstddef>
#include <cstdint>

// What a master request asks for; the texts that go with each kind are listed in docs/host-interface.md.
namespace master {
inline constexpr std::uint32_t Exchanges = 2;
inline constexpr std::uint32_t SecurityTypes = 4;
inline constexpr std::uint32_t Symbols = 6;
inline constexpr std::uint32_t Expiries = 8;
inline constexpr std::uint32_t OptionTypes = 10;
inline constexpr std::uint32_t Strikes = 12;
inline constexpr std::uint32_t Contract = 14;
inline constexpr std::uint32_t OptionContract = 16;
inline constexpr std::uint32_t Clients = 18;
inline constexpr std::uint32_t CtclEntries = 20;
inline constexpr std::uint32_t ContractByID = 30;
}  // namespace master

// One contract of the terminal's security master. Lives as long as the terminal.
struct SecurityMasterEntry {
    char exchange[48];
    char securityID[48];
    char securityType[16];
    char symbol[32];
    char expiryText[32];
    char optionType[16];
    char divisorKey[32];
    double strikePrice;
    std::int64_t expiryTime;  // seconds since 1970; below 1: expiryText counts
};
static_assert(offsetof(SecurityMasterEntry, strikePrice) == 224 && sizeof(SecurityMasterEntry) == 240);

struct MasterRequest {
    std::uint32_t kind;
    std::uint32_t textCount;
    const char* texts[6];
};
static_assert(offsetof(MasterRequest, texts) == 8 && sizeof(MasterRequest) == 8 + 6 * sizeof(void*));

// Zeroed by the asker. What the terminal puts in stays valid until the next request, the entry as long as it
// lives.
struct MasterAnswer {
    std::uint32_t count;
    const char* const* list;
    const SecurityMasterEntry* entry;
};
static_assert(offsetof(MasterAnswer, list) == 8 && offsetof(MasterAnswer, entry) == 16);

// Handed to the function whose address a selected-contract query carries. The plug-in frees `buffer` when the
// terminal has set it.
struct SelectedContractReply {
    std::uint64_t zero;
    const std::uint8_t* data;
    std::uint8_t* buffer;
    std::uint32_t zero32;
    std::uint16_t length;
};
static_assert(offsetof(SelectedContractReply, data) == 8 && offsetof(SelectedContractReply, buffer) == 16 &&
              offsetof(SelectedContractReply, length) == 28);

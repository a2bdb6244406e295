// The registry shape: keys that hold named values. Grids read and write their settings through it, wherever
// they lie.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// A key path has its levels separated by "\". Texts are narrow. One thread at a time.
//
// Opening makes a key the current one; reads and writes go to the values right under it. A read that fails
// leaves the caller's variable as it was, so that it keeps its default.
class CKRVPRegistry {
 public:
    virtual ~CKRVPRegistry() = default;

    // For reading: false when the key does not exist; no key is then open.
    virtual bool Open(std::string_view key) = 0;
    // For writing: makes the key, and the levels above it, when missing. False when that is not allowed or
    // the key has no usable name.
    virtual bool CreateKey(std::string_view key) = 0;

    virtual bool WriteText(std::string_view name, std::string_view text) = 0;
    virtual bool WriteInteger(std::string_view name, std::int32_t value) = 0;
    // Windows colour values, red in the low byte.
    virtual bool WriteColour(std::string_view name, std::uint32_t colour) = 0;
    virtual bool WriteBinary(std::string_view name, std::span<const std::uint8_t> bytes) = 0;

    virtual bool ReadText(std::string_view name, std::string& text) const = 0;
    virtual bool ReadInteger(std::string_view name, std::int32_t& value) const = 0;
    virtual bool ReadColour(std::string_view name, std::uint32_t& colour) const = 0;
    virtual bool ReadBinary(std::string_view name, std::vector<std::uint8_t>& bytes) const = 0;
};

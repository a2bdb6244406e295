// Any bytes as a settings file: a tree comes of them that is written and read again to the same.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/FuzzCheck.h"
#include "tradebook/base/VELTPXMLSettings.h"

namespace Dravel::Fuzz {

inline void FuzzSettings(const std::uint8_t* data, std::size_t size) {
    CVELTPXMLSettings settings;
    if (!settings.LoadTextForm({reinterpret_cast<const char*>(data), size})) return;
    const std::string form = settings.TextForm();
    Require(form.size() <= 8 * size + 64, "what was read is no more than the file held");
    CVELTPXMLSettings again;
    Require(form.empty() || again.LoadTextForm(form), "what was read can be written");
    Require(again.TextForm() == form, "writing is stable");
    settings.Open("TradeGrid");
    std::int32_t integer = 0;
    std::vector<std::uint8_t> bytes;
    settings.ReadInteger("ColumnFreeze", integer);
    settings.ReadBinary("Font", bytes);
    if (settings.CreateKey("TradeGrid") && settings.WriteInteger("ColumnFreeze", 3)) {
        Require(settings.ReadInteger("ColumnFreeze", integer) && integer == 3, "a written value is read");
    }
}

}  // namespace Dravel::Fuzz

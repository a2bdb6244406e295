// Builds a dialog's template in memory, in the form that the system reads (DLGTEMPLATEEX).
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace Dravel {

// The system's class atoms; the others go by name.
enum class DialogControl : std::uint16_t {
    Button = 0x80,
    Edit = 0x81,
    Static = 0x82,
    ListBox = 0x83,
    ScrollBar = 0x84,
    ComboBox = 0x85,
};

// Style bits of the system that tables of controls need, under their own names.
namespace style {
inline constexpr std::uint32_t TabStop = 0x00010000, Group = 0x00020000, Border = 0x00800000,
                               VScroll = 0x00200000, Disabled = 0x08000000,
                               Hidden = 0x80000000;  // Hidden: left out of what is made visible
inline constexpr std::uint32_t DefaultButton = 1, CheckBox = 3, GroupBox = 7, EditAutoHScroll = 0x80,
                               EditReadOnly = 0x800, EditMultiline = 4, StaticRight = 2, ComboDropDown = 2,
                               ComboDropDownList = 3, ListNotify = 1, ListNoIntegralHeight = 0x100;
}  // namespace style

// Places in dialog units. `text` with "&" before the mnemonic.
struct DialogItem {
    DialogControl control = DialogControl::Static;
    std::wstring_view text;
    std::uint16_t id = 0;
    int x = 0, y = 0, width = 0, height = 0;
    std::uint32_t style = 0;             // beside WS_CHILD | WS_VISIBLE
    const wchar_t* className = nullptr;  // instead of `control`
};

class DialogTemplate {
 public:
    // A captioned modal dialog in the shell's dialog font, centred on its owner by DialogBase. `resizable`
    // adds a sizing frame.
    DialogTemplate(std::wstring_view title, int width, int height, bool resizable = false);
    // Tab order is the order of the calls.
    DialogTemplate& Add(const DialogItem& item);
    // Valid until the next Add. Aligned to 4 bytes.
    const void* Data() const { return words_.data(); }
    std::size_t Size() const { return words_.size() * sizeof(std::uint16_t); }

 private:
    void Word(std::uint16_t value) { words_.push_back(value); }
    void Dword(std::uint32_t value);
    void Text(std::wstring_view text);
    void Place(int x, int y, int width, int height);
    void Align();

    std::vector<std::uint16_t> words_;
};

}  // namespace Dravel

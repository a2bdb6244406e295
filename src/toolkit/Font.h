// Fonts as the settings keep them: the bytes of the system's LOGFONTW.
#pragma once

#include <array>
#include <cstddef>

namespace Dravel {

// LOGFONTW as it stands in memory: 5 x 32-bit, 8 bytes, 32 UTF-16 units of face name.
using FontBytes = std::array<std::byte, 92>;

// The font that `window` draws with (the message font when it has none of its own). `window` may be null.
FontBytes FontOfWindow(void* window);
void SetFontFace(FontBytes& font, const wchar_t* face, int weight);
// The same font for a window of another resolution: heights in a description count at the system's.
FontBytes ScaleFont(const FontBytes& font, int dpi, int systemDpi);
// The system's font dialog, starting from `font`. True when the user confirmed; `font` then holds the choice.
bool ChooseFontDialog(void* owner, FontBytes& font);
// An HFONT of these bytes, or null. The caller deletes it with DeleteFontHandle.
void* CreateFontHandle(const FontBytes& font);
void DeleteFontHandle(void* font) noexcept;

}  // namespace Dravel

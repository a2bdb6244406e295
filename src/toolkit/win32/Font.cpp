#include "toolkit/Font.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <cwchar>

#include "toolkit/ModalLoop.h"
#include "toolkit/win32/CommonDialogs.h"

namespace Dravel {
namespace {

static_assert(sizeof(LOGFONTW) == sizeof(FontBytes));

LOGFONTW Describe(const FontBytes& bytes) {
    LOGFONTW font;
    std::memcpy(&font, bytes.data(), sizeof font);
    font.lfFaceName[LF_FACESIZE - 1] = 0;  // settings are a file that anybody may edit
    return font;
}

FontBytes Bytes(const LOGFONTW& font) {
    FontBytes bytes;
    std::memcpy(bytes.data(), &font, sizeof font);
    return bytes;
}

}  // namespace

FontBytes FontOfWindow(void* window) {
    LOGFONTW font{};
    const auto handle =
        window == nullptr
            ? nullptr
            : reinterpret_cast<HFONT>(SendMessageW(static_cast<HWND>(window), WM_GETFONT, 0, 0));
    if (handle != nullptr && GetObjectW(handle, sizeof font, &font) == sizeof font) return Bytes(font);
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0) != 0)
        return Bytes(metrics.lfMessageFont);
    GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
    return Bytes(font);
}

void SetFontFace(FontBytes& bytes, const wchar_t* face, int weight) {
    LOGFONTW font = Describe(bytes);
    const std::size_t length = std::min<std::size_t>(std::wcslen(face), LF_FACESIZE - 1);
    std::fill(std::begin(font.lfFaceName), std::end(font.lfFaceName), wchar_t{});
    std::copy_n(face, length, font.lfFaceName);
    font.lfWeight = weight;
    bytes = Bytes(font);
}

FontBytes ScaleFont(const FontBytes& bytes, int dpi, int systemDpi) {
    if (dpi <= 0 || systemDpi <= 0 || dpi == systemDpi) return bytes;
    LOGFONTW font = Describe(bytes);
    font.lfHeight = MulDiv(font.lfHeight, dpi, systemDpi);
    font.lfWidth = MulDiv(font.lfWidth, dpi, systemDpi);
    return Bytes(font);
}

bool ChooseFontDialog(void* owner, FontBytes& bytes) {
    LOGFONTW font = Describe(bytes);
    CHOOSEFONTW request{};
    request.lStructSize = sizeof request;
    request.hwndOwner = static_cast<HWND>(owner);
    request.lpLogFont = &font;
    request.Flags = CF_SCREENFONTS | CF_INITTOLOGFONTSTRUCT | CF_FORCEFONTEXIST;
    const ModalLoop modal;
    if (!CommonDialogs().ChooseFont(request)) return false;
    bytes = Bytes(font);
    return true;
}

void* CreateFontHandle(const FontBytes& bytes) {
    const LOGFONTW font = Describe(bytes);
    return CreateFontIndirectW(&font);
}

void DeleteFontHandle(void* font) noexcept {
    if (font != nullptr) DeleteObject(static_cast<HGDIOBJ>(font));
}

}  // namespace Dravel

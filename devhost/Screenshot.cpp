// Copies the screen's pixels; windows of the system in front of ours are in the picture, as a person would
// see them.
#include "Screenshot.h"

#include <vector>

#include "Png.h"

namespace Dravel::DevHost {
namespace {

RECT AreaOf(HWND window) {
    RECT area{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)}, own;
    if (window && GetWindowRect(window, &own)) IntersectRect(&area, &area, &own);
    return area;
}

bool CopyPixels(HDC screen, const RECT& area, std::vector<std::uint32_t>& pixels) {
    const int width = area.right - area.left, height = area.bottom - area.top;
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    HGDIOBJ before = SelectObject(memory, bitmap);
    bool copied = BitBlt(memory, 0, 0, width, height, screen, area.left, area.top, SRCCOPY | CAPTUREBLT) != 0;
    SelectObject(memory, before);
    pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    copied = copied &&
             GetDIBits(memory, bitmap, 0, static_cast<UINT>(height), pixels.data(), &info, DIB_RGB_COLORS);
    DeleteObject(bitmap);
    DeleteDC(memory);
    return copied;
}

}  // namespace

bool SaveScreenshot(HWND window, const std::filesystem::path& file) {
    const RECT area = AreaOf(window);
    if (IsRectEmpty(&area)) return false;
    std::vector<std::uint32_t> pixels;
    HDC screen = GetDC(nullptr);
    const bool copied = CopyPixels(screen, area, pixels);
    ReleaseDC(nullptr, screen);
    return copied && WritePng(file, pixels, static_cast<std::uint32_t>(area.right - area.left),
                              static_cast<std::uint32_t>(area.bottom - area.top));
}

}  // namespace Dravel::DevHost

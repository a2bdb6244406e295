#include "toolkit/DialogTemplate.h"

namespace Dravel {
namespace {

// DLGTEMPLATEEX: places in 16-bit units from its beginning.
constexpr std::size_t kItemCountAt = 8;
constexpr std::uint16_t kVersion = 1, kSignature = 0xFFFF, kAtom = 0xFFFF;
constexpr std::uint16_t kFontPoints = 8, kFontWeight = 400, kDefaultCharset = 1;

// Window and dialog style bits of the system.
constexpr std::uint32_t kPopup = 0x80000000, kCaption = 0x00C00000, kSysMenu = 0x00080000,
                        kThickFrame = 0x00040000, kModalFrame = 0x80, kShellFont = 0x48, kChild = 0x40000000,
                        kVisible = 0x10000000, kClientEdge = 0x200;

bool HasEdge(const DialogItem& item) {
    return item.className == nullptr &&
           (item.control == DialogControl::Edit || item.control == DialogControl::ListBox);
}

}  // namespace

DialogTemplate::DialogTemplate(std::wstring_view title, int width, int height, bool resizable) {
    Word(kVersion);
    Word(kSignature);
    Dword(0);  // help
    Dword(0);  // extended style
    Dword(kPopup | kCaption | kSysMenu | kShellFont | (resizable ? kThickFrame : kModalFrame));
    Word(0);  // items, counted by Add
    Place(0, 0, width, height);
    Word(0);  // no menu
    Word(0);  // the system's dialog class
    Text(title);
    Word(kFontPoints);
    Word(kFontWeight);
    Word(kDefaultCharset << 8);  // low byte: not italic
    Text(L"MS Shell Dlg");
}

DialogTemplate& DialogTemplate::Add(const DialogItem& item) {
    Align();
    Dword(0);  // help
    Dword(HasEdge(item) ? kClientEdge : 0);
    Dword(kChild | ((item.style & style::Hidden) != 0 ? 0 : kVisible) | (item.style & ~style::Hidden));
    Place(item.x, item.y, item.width, item.height);
    Dword(item.id);
    if (item.className != nullptr) {
        Text(item.className);
    } else {
        Word(kAtom);
        Word(static_cast<std::uint16_t>(item.control));
    }
    Text(item.text);
    Word(0);  // no creation data
    ++words_[kItemCountAt];
    return *this;
}

void DialogTemplate::Dword(std::uint32_t value) {
    Word(static_cast<std::uint16_t>(value));
    Word(static_cast<std::uint16_t>(value >> 16));
}

void DialogTemplate::Text(std::wstring_view text) {
    for (const wchar_t unit : text)
        Word(static_cast<std::uint16_t>(unit));
    Word(0);
}

void DialogTemplate::Place(int x, int y, int width, int height) {
    for (const int value : {x, y, width, height})
        Word(static_cast<std::uint16_t>(value));
}

// Each item begins at a multiple of four bytes.
void DialogTemplate::Align() {
    if (words_.size() % 2 != 0) Word(0);
}

}  // namespace Dravel

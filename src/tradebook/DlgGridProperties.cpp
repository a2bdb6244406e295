#include "tradebook/DlgGridProperties.h"

#include <windows.h>

#include <cstring>
#include <string>
#include <utility>

using namespace Dravel;

namespace {

constexpr int kList = 1301;
constexpr int kWidth = 230, kHeight = 286, kMargin = 6, kButtonHeight = 14, kButtonWidth = 54;

DialogTemplate Shape() {
    DialogTemplate shape(L"Dravel", kWidth, kHeight);
    shape.Add({.control = DialogControl::Button,
               .text = L"&Close",
               .id = IDOK,
               .x = kWidth - kMargin - kButtonWidth,
               .y = kHeight - kMargin - kButtonHeight,
               .width = kButtonWidth,
               .height = kButtonHeight,
               .style = style::TabStop | style::DefaultButton});
    return shape;
}

// "MS Sans Serif, 8 pt, bold": the size that the font's height comes to on this screen.
std::wstring FontText(const FontBytes& bytes, int dpi) {
    LOGFONTW font;
    static_assert(sizeof font == sizeof bytes);
    std::memcpy(&font, bytes.data(), sizeof font);
    font.lfFaceName[LF_FACESIZE - 1] = 0;
    std::wstring text = font.lfFaceName;
    const LONG height = font.lfHeight < 0 ? -font.lfHeight : font.lfHeight;
    if (height > 0) text += L", " + std::to_wstring(MulDiv(height, 72, dpi)) + L" pt";
    if (font.lfWeight >= FW_BOLD) text += L", bold";
    if (font.lfItalic) text += L", italic";
    return text;
}

}  // namespace

DlgGridProperties::DlgGridProperties(const GridProperties& properties, const FontBytes& font,
                                     std::function<void(const PropertyChange&)> change)
    : properties_(properties), change_(std::move(change)) {
    list_.font = font;
}

void DlgGridProperties::Open(void* owner) {
    DoModal(owner, Shape());
}

void DlgGridProperties::OnInit() {
    int left = kMargin, top = kMargin, right = kWidth - kMargin,
        bottom = kHeight - 2 * kMargin - kButtonHeight;
    MapUnits(left, top);
    MapUnits(right, bottom);
    list_.List() = MakePropertyList();
    list_.onChange = [this](const PropertyChange& change) {
        change_(change);
        ShowValues();
    };
    if (!list_.Create(Window(), {left, top, right, bottom}, kList)) return End(kDialogCancel);
    ShowValues();
    FocusItem(kList);
}

void DlgGridProperties::ShowValues() {
    ShowProperties(properties_, list_.List());
    const UINT dpi = GetDpiForWindow(static_cast<HWND>(Window()));
    if (PropertyItem* font = list_.List().Find(static_cast<int>(GridProperty::Font)))
        font->text = FontText(list_.font, dpi != 0 ? static_cast<int>(dpi) : kBaseDpi);
    list_.Refresh();
}

// A number that is still being typed counts.
void DlgGridProperties::OnCancel() {
    list_.FinishEdit();
    End(kDialogOk);
}

void DlgGridProperties::OnDestroy() {
    list_.onChange = nullptr;
}

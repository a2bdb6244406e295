#include "tradebook/DlgNotices.h"

#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include "toolkit/AnsiText.h"
#include "toolkit/DialogBase.h"
#include "tradebook/base/NoticeList.h"

namespace Dravel {

namespace {

enum Control : std::uint16_t { kList = 1501 };
constexpr int kTimeWidth = 84, kListWidth = 344, kScrollBar = 16;  // dialog units

class DlgNotices final : public DialogBase {
 public:
    explicit DlgNotices(const NoticeList& notices) : notices_(notices) {}
    void Open(void* owner) {
        DialogTemplate shape(L"Notices", 360, 200);
        shape
            .Add({.text = {},
                  .id = kList,
                  .x = 8,
                  .y = 8,
                  .width = kListWidth,
                  .height = 162,
                  .style = style::TabStop | style::Border | LVS_REPORT | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER,
                  .className = WC_LISTVIEWW})
            .Add({.control = DialogControl::Button,
                  .text = L"Close",
                  .id = IDCANCEL,
                  .x = 298,
                  .y = 178,
                  .width = 54,
                  .height = 14,
                  .style = style::TabStop | style::DefaultButton});
        DoModal(owner, shape);
    }

 private:
    void OnInit() override {
        int time = kTimeWidth, width = kListWidth - kScrollBar, unused = 0;
        MapUnits(time, unused);
        MapUnits(width, unused);
        const HWND list = static_cast<HWND>(Item(kList));
        SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT);
        AddColumn(kList, 0, L"Time", time);
        AddColumn(kList, 1, L"Notice", width - time);
        int row = 0;
        for (auto notice = notices_.All().rbegin(); notice != notices_.All().rend(); ++notice, ++row) {
            std::wstring text = Widen(notice->time);
            LVITEMW item{};
            item.mask = LVIF_TEXT;
            item.iItem = row;
            item.pszText = text.data();
            SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
            text = Widen(notice->text);
            item.pszText = text.data();
            item.iSubItem = 1;
            SendMessageW(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
        }
        SetFocus(list);
    }

    const NoticeList& notices_;
};

}  // namespace

void ShowNoticeList(void* owner, const NoticeList& notices) {
    DlgNotices(notices).Open(owner);
}

}  // namespace Dravel

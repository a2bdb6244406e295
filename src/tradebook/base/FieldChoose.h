// The field chooser: which columns a grid shows, and in which order.
#pragma once

#include <string>

#include "toolkit/DialogBase.h"
#include "toolkit/PGridCtrl.h"
#include "tradebook/base/FieldLists.h"

// Hiding and showing counts at once; OK applies the order of the list, Cancel puts back the order that the
// dialog found.
class CFieldChoose final : public Dravel::DialogBase {
 public:
    // `code` is that of the grid's kind, see GridNameOf. The grid outlives the dialog.
    CFieldChoose(CKRVPGridCtrl& grid, int code);
    // Modal to `owner` (HWND).
    void Open(void* owner);

 private:
    void OnInit() override;
    bool OnCommand(int id, int code) override;
    void OnOk() override;
    void OnCancel() override;

    void Fill(int list, const std::vector<int>& columns, int select);
    void MoveShown(int to);
    void Hide();
    void Show();
    void EnableButtons();
    int SelectedIn(int list) const;

    CKRVPGridCtrl& grid_;
    std::wstring title_;
    Dravel::FieldLists lists_;
};

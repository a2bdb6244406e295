// The dialog "Dravel", in which the user changes the properties of the grid; each change counts at once.
#pragma once

#include <functional>

#include "toolkit/DialogBase.h"
#include "toolkit/PropertyListCtrl.h"
#include "tradebook/GridPropertyList.h"

class DlgGridProperties final : public Dravel::DialogBase {
 public:
    // `change` is told of each change and applies it to `properties`, which the list then shows again.
    DlgGridProperties(const Dravel::GridProperties& properties, const Dravel::FontBytes& font,
                      std::function<void(const Dravel::PropertyChange&)> change);
    // Modal to `owner` (HWND).
    void Open(void* owner);

 private:
    void OnInit() override;
    void OnOk() override { OnCancel(); }
    void OnCancel() override;
    void OnDestroy() override;
    void ShowValues();

    const Dravel::GridProperties& properties_;
    std::function<void(const Dravel::PropertyChange&)> change_;
    CKRVPPropertyList list_;
};

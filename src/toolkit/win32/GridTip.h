// Shows the whole of a cell's or header's text while the pointer rests on one that is cut off.
#pragma once

#include <windows.h>

#include <string>

#include "toolkit/PGridCtrl.h"

class GridTip {
 public:
    explicit GridTip(CKRVPGridCtrl& owner) : grid_(owner) {}
    ~GridTip() { Drop(); }
    GridTip(const GridTip&) = delete;
    GridTip& operator=(const GridTip&) = delete;

    void PointerMoved(const Dravel::GridHit& hit);
    void PointerRests(const Dravel::GridHit& hit);
    void Hide();
    void Drop();  // with the grid's window

 private:
    // The text of what was hit and where it shows, in client pixels; false when it is not cut off.
    bool CutOff(const Dravel::GridHit& hit, std::wstring& text, RECT& shown) const;
    bool Make();

    CKRVPGridCtrl& grid_;
    HWND window_ = nullptr;
    Dravel::GridHit at_;
    bool shown_ = false;
};

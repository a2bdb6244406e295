// The dialog through which the user imports a CSV file.
#pragma once

#include <memory>

#include "entry/CsvImport.h"
#include "toolkit/DialogBase.h"

namespace Dravel {

// Modal to `owner` (HWND). Returns when the user closes it, or after an import that added trades.
void ShowImportDialog(void* owner, const ImportPorts& ports);

}  // namespace Dravel

// The import runs in slices between the dialog's messages, so windows paint and answer all the while; the
// dialog stays open as long as it runs. Cancel then ends the import and not the dialog.
class DlgImportDravel final : public Dravel::DialogBase {
 public:
    explicit DlgImportDravel(const Dravel::ImportPorts& ports) : ports_(ports) {}
    std::intptr_t Open(void* owner);

 private:
    void OnInit() override;
    bool OnCommand(int id, int code) override;
    void OnOk() override;
    void OnCancel() override;
    bool OnMessage(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam,
                   std::intptr_t& result) override;

    void Browse();
    void NextSlice();
    void Slice();
    void ShowProgress();
    void EnableControls(bool idle);

    Dravel::ImportPorts ports_;
    Dravel::ImportMapping mapping_;              // no format set: the file's first line names the fields
    std::unique_ptr<Dravel::CsvImport> import_;  // while one runs
    std::uint64_t started_ = 0;                  // milliseconds, of the system's clock
    std::uint64_t shown_ = 0;                    // when the progress was shown last
    bool saysCancel_ = false;                    // the button names the run
};

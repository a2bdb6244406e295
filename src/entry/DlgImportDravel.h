// The dialog through which the user imports a CSV file.
#pragma once

#include <filesystem>
#include <memory>

#include "entry/CsvImport.h"
#include "entry/ImportSets.h"
#include "toolkit/DialogBase.h"
#include "tradebook/BarContext.h"

namespace Dravel {

// Modal to `owner` (HWND), with `file` filled in unless it is empty. Returns when the user closes it, or
// after an import that added trades.
void ShowImportDialog(void* owner, const ImportPorts& ports, const BarContext& bar,
                      const std::filesystem::path& file);

}  // namespace Dravel

// The import runs in slices between the dialog's messages, so windows paint and answer all the while; the
// dialog stays open as long as it runs. Cancel then ends the import and not the dialog; the end of the book
// ends both.
class DlgImportDravel final : public Dravel::DialogBase {
 public:
    DlgImportDravel(const Dravel::ImportPorts& ports, const Dravel::BarContext& bar);
    std::intptr_t Open(void* owner, const std::filesystem::path& file);

 private:
    void OnInit() override;
    bool OnCommand(int id, int code) override;
    void OnOk() override;
    void OnCancel() override;
    bool OnMessage(std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam,
                   std::intptr_t& result) override;

    void Browse();
    void EditSets();
    void ListSets();
    void ChooseListed();
    void ShowChosen();
    void TakeFile(const std::wstring& path);
    void SuggestSet();
    bool IsFolder(const std::filesystem::path& path) const;
    std::filesystem::path FileToImport() const;
    std::wstring FolderToPropose() const;
    void Remember(const std::filesystem::path& file) const;
    void NextSlice();
    bool Slice();
    void ShowProgress();
    void EndRun();
    void BookGone();
    void EnableControls(bool idle);

    Dravel::ImportPorts ports_;
    const Dravel::BarContext& bar_;
    Dravel::ImportSets sets_;
    std::wstring file_;                          // with which the dialog opens
    std::wstring setsPath_;                      // what the chosen set put into the path's field
    std::wstring suggestedFor_;                  // the path for which a set was looked for last
    bool byHand_ = false;                        // the user chose from the list
    std::unique_ptr<Dravel::CsvImport> import_;  // while one runs
    std::uint64_t started_ = 0;                  // milliseconds, of the system's clock
    std::uint64_t shown_ = 0;                    // when the progress was shown last
    bool saysCancel_ = false;                    // the button names the run
    bool bookGone_ = false;                      // the dialog is over, as soon as what runs in it returns
};

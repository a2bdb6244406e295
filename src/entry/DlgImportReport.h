// The window that shows what an import left out.
#pragma once

#include <memory>
#include <string>

#include "entry/ImportReportView.h"
#include "host/User.h"
#include "toolkit/DialogBase.h"

// Lives as long as the library; its window comes and goes.
class DlgImportReport final : public Dravel::DialogBase, public Dravel::IImportReportView {
 public:
    DlgImportReport(Dravel::IFiles& files, Dravel::IUser& user) : files_(files), user_(user) {}

    void Show(void* owner, std::shared_ptr<const Dravel::ImportReport> report) override;
    void Renew(std::shared_ptr<const Dravel::ImportReport> report) override;
    void Close() override { End(Dravel::kDialogCancel); }
    bool Asking() const override { return asking_; }

 private:
    void OnInit() override;
    bool OnCommand(int id, int code) override;
    bool OnNotify(int id, void* header, std::intptr_t& result) override;
    void OnSize(int width, int height) override;
    void OnDestroy() override;

    void ShowReport();
    void FillCell(void* item);
    void LayOut(int width, int height);
    void Save();

    Dravel::IFiles& files_;
    Dravel::IUser& user_;
    std::shared_ptr<const Dravel::ImportReport> report_;  // as long as the window is open
    bool asking_ = false;                                 // where to save
};

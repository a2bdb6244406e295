// An import report that nobody looks at.
#pragma once

#include "entry/ImportReportView.h"

namespace Dravel::Test {

struct NoReports final : IImportReportView {
    void Show(void*, std::shared_ptr<const ImportReport>) override {}
    void Renew(std::shared_ptr<const ImportReport>) override {}
    void Close() override {}
    bool Asking() const override { return false; }
};

}  // namespace Dravel::Test

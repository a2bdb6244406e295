// Where the report about an import is shown.
#pragma once

#include <memory>

#include "entry/ImportReport.h"

namespace Dravel {

// User-interface thread. There is one at a time.
class IImportReportView {
 public:
    virtual ~IImportReportView() = default;
    // Beside the other windows, above the frame of `owner` (HWND); one that is open comes to the front.
    virtual void Show(void* owner, std::shared_ptr<const ImportReport> report) = 0;
    // When one is open it shows this report from now on.
    virtual void Renew(std::shared_ptr<const ImportReport> report) = 0;
    virtual void Close() = 0;
    // It asks the user something: its owner must stay.
    virtual bool Asking() const = 0;
};

}  // namespace Dravel

// Trade entry: what the user does to the book.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "entry/CsvImport.h"
#include "entry/ImportReportView.h"
#include "entry/ManualClients.h"
#include "entry/TradeEntry.h"
#include "entry/TradeSaver.h"
#include "host/Host.h"
#include "host/User.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "tradebook/EntryPort.h"

namespace Dravel {

// What entry needs of the world. All live as long as the library.
struct EntryContext {
    IHost& host;
    IUser& user;
    IFiles& files;
    IClock& clock;
    ManualClients& clients;
    // ShowImportDialog, but in tests.
    void (*importDialog)(void* owner, const ImportPorts& ports, const BarContext& bar,
                         const std::filesystem::path& file);
    IImportReportView& reportView;
};

// User-interface thread. Between BookClosed and the next BookOpened every request does nothing, but a save,
// which fails. The same while the gate of the book lets no change pass.
class Entry final : public IEntry {
 public:
    explicit Entry(const EntryContext& context) : context_(context) {}

    void BookOpened(const BookParts& parts) override;
    void JournalOpened() override;
    void BookClosed() override;
    void Save() override;
    AskEnd AskToSave() override;
    bool SaveNow() override;
    void EndImport() override;
    void FinishSaves() override;
    void Import(void* owner, const std::filesystem::path& file) override;
    void Choices(const TradeDraft& draft, int column, std::string_view typed,
                 std::vector<std::string>& choices) override;
    EditEnd EndEdit(TradeDraft& draft, int column, std::string_view text, EditEnding ending,
                    IDraftView& view) override;
    int NextColumn(const TradeDraft& draft, int column) const override;
    std::string Missing(const TradeDraft& draft) const override;
    void Delete(IDraftView& view) override;
    std::string ImportSummary() const override { return report_ ? report_->Summary() : std::string(); }
    void ShowImportReport(void* owner) override;
    void RetryFiles() override { context_.clients.Retry(); }
    bool Busy() const override { return importing_ || context_.reportView.Asking(); }

 private:
    // Why the user may not change the book now; empty: he may.
    std::string Refusal() const;
    bool CannotSave();
    void TakeReport(std::unique_ptr<ImportReport> report);

    EntryContext context_;
    std::optional<BookParts> parts_;
    std::unique_ptr<TradeSaver> saver_;
    std::unique_ptr<TradeEntry> typing_;
    std::shared_ptr<const ImportReport> report_;  // of the last import
    bool importing_ = false;                      // the import dialog is open
    std::function<void()> bookGoes_;              // ends it
};

}  // namespace Dravel

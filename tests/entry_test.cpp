// What trade entry keeps while the import dialog is open.
#include <gtest/gtest.h>

#include <functional>

#include "entry/Entry.h"
#include "support/FakeLog.h"
#include "support/ImportRig.h"
#include "tradebook/BarContext.h"
#include "tradebook/TradeBook.h"

namespace Dravel {
namespace {

using Test::FakeLog;
using Test::Strings;

struct Nobody final : IImportReportView, IUiThread {
    void Show(void*, std::shared_ptr<const ImportReport>) override {}
    void Renew(std::shared_ptr<const ImportReport>) override {}
    void Close() override {}
    bool Asking() const override { return false; }
    void Post(std::function<void()>) override {}
};

std::function<void(const ImportPorts&)> whileOpen;
void Dialog(void*, const ImportPorts& ports, const BarContext&, const std::filesystem::path&) {
    whileOpen(ports);
}

class ImportDialogs : public testing::Test, protected Test::ImportRig {
 protected:
    ImportDialogs() { entry.BookOpened({real, nullptr, nobody, log, &bar}); }

    Nobody nobody;
    FakeLog log;
    TradeBook real{host};
    Entry entry{{host, user, disk, clock, manual, &Dialog, nobody}};
    DataFolder folder{"."};
    CVELTPXMLSettings settings;
    NoticeList notices{clock};
    SettingsGuard guard{disk, clock, log, settings, folder.Settings()};
    BarContext bar{host, user, entry, disk, clock, folder, settings, log, notices, guard};
};

TEST_F(ImportDialogs, OneThatThrewLetsTheNextOneOpen) {
    whileOpen = [](const ImportPorts&) { throw std::bad_alloc(); };
    EXPECT_THROW(entry.Import(nullptr, {}), std::bad_alloc);
    EXPECT_FALSE(entry.Busy());
    bool opened = false;
    whileOpen = [&](const ImportPorts&) { opened = true; };
    entry.Import(nullptr, {});
    EXPECT_TRUE(opened);
}

TEST_F(ImportDialogs, TheBooksEndEndsTheRunWithoutAReport) {
    disk.Put("in.csv", {'c', 'l', 'i', 'e', 'n', 't', 'i', 'd', '\n', 'C', '1', '\n'});
    whileOpen = [&](const ImportPorts& ports) {
        CsvImport import(ports, mapping);
        *ports.bookGoes = [&] { import.BookGone(); };
        ASSERT_TRUE(import.Begin("in.csv"));
        entry.BookClosed();
        entry.BookOpened({real, nullptr, nobody, log, &bar});
        EXPECT_TRUE(entry.Busy());  // one is still open
        EXPECT_FALSE(import.Step(1));
        import.Finish();
    };
    entry.Import(nullptr, {});
    EXPECT_EQ(real.RowCount(), 0u);
    EXPECT_EQ(entry.ImportSummary(), "");
    EXPECT_FALSE(entry.Busy());
    entry.BookClosed();  // nothing is left to be ended
}

// An opening that broke off has no saver; "Yes" at closing must not pass for a save.
TEST_F(ImportDialogs, ASaveOfABookThatIsNotOpenFailsAloud) {
    entry.BookClosed();
    user.answers = {kAnswerYes};
    entry.AskToSave();
    entry.Save();
    const std::string failed = "Dravel|Dravel Save Failed\nThe book is closed.";
    EXPECT_EQ(user.boxes, (Strings{"Dravel|Do you want to save Dravel", failed, failed}));
}

}  // namespace
}  // namespace Dravel

// The grid's export command.
#include "formatset/DateFormat.h"
#include "support/FaultText.h"
#include "toolkit/AnsiText.h"
#include "toolkit/FileDialog.h"
#include "tradebook/DravelGrid.h"
#include "tradebook/TradeExport.h"

using namespace Dravel;

namespace {

constexpr char kCaption[] = "DravelBook", kContext[] = "Export";
constexpr char kExportKey[] = "Export", kLastFolder[] = "LastFolder";

// The folder used last as long as it is there, else the plug-in's own.
std::filesystem::path FolderToPropose(const BarContext& context) {
    std::string last;
    FileInfo info;
    if (context.settings.Open(kExportKey) && context.settings.ReadText(kLastFolder, last) && !last.empty()) {
        const std::filesystem::path folder(FromUtf8(last));
        if (context.files.Info(folder, info)) return folder;
    }
    context.files.MakeFolders(context.folder.Csv());
    return context.folder.Csv();
}

void RememberFolder(const BarContext& context, const std::filesystem::path& folder) {
    if (!context.settings.CreateKey(kExportKey)) return;
    context.settings.WriteText(kLastFolder, Utf8(folder.wstring()));
    context.SaveSettings();
}

}  // namespace

// Without them prices would be exported undivided, and nobody could tell.
bool CDravelGrid::KnowDivisors() {
    if (!divisorFault_) divisorFault_ = divisors_.Load(context_.files, context_.folder.Divisors());
    if (!divisorFault_)
        user_.Box(
            FaultText("PriceDivisor.csv cannot be read, and the prices would not be divided. Nothing was "
                      "exported",
                      divisorFault_),
            kCaption, Buttons::Ok, Icon::Error);
    return static_cast<bool>(divisorFault_);
}

void CDravelGrid::ExportCsv() {
    if (book_.RowCount() == 0 || !KnowDivisors()) return;
    const std::string name =
        "DravelBook_" + FormatDate(context_.clock.Now(), "yyyyMMdd", context_.clock) + ".CSV";
    FileDialogParams params;
    params.save = true;
    params.filter = L"DravelBook|*.CSV";
    params.extension = L".CSV";
    params.path = (FolderToPropose(context_) / name).wstring();
    if (!FileDialog(Window(), params)) return;
    const std::filesystem::path path(params.path);
    RememberFolder(context_, path.parent_path());
    WriteExport(path);
}

// A file that cannot be opened is told of by a notice, and the box says "successfully" all the same:
// deliberate. One that breaks off is never called a success.
void CDravelGrid::WriteExport(const std::filesystem::path& path) {
    book_.FindContracts();
    const ExportResult result = ExportTrades(context_.files, path, Columns(), ExportMode::AllColumns,
                                             TradesInOrder(book_), divisors_);
    if (!result.status) {
        const std::string reason = FaultText(
            result.opened ? "The CSV file could not be written" : "The CSV file could not be opened",
            result.status);
        context_.log.Line(LogLevel::Error, kContext, reason + " " + Narrow(path.wstring()));
        if (result.opened) {
            user_.Box(reason, kCaption, Buttons::Ok, Icon::Error);
            return;
        }
        user_.Notice(reason);
    }
    user_.Box("TradeBook CSV Successfully exported..!!", kCaption, Buttons::Ok, Icon::Information);
}

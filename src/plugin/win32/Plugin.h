// The plug-in as a whole: what lives as long as the library, and what lives as long as its bar.
#pragma once

#include <memory>
#include <utility>

#include "entry/DlgImportReport.h"
#include "entry/Entry.h"
#include "plugin/LeftTrades.h"
#include "plugin/MessageDispatch.h"
#include "plugin/WaitingTrades.h"
#include "plugin/win32/ScreenUser.h"
#include "plugin/win32/TerminalHost.h"
#include "support/DataFolder.h"
#include "support/FileLog.h"
#include "support/win32/CrashDump.h"
#include "tradebook/DravelBar.h"
#include "tradebook/base/RememberedAnswers.h"
#include "tradebook/base/VELTPXMLSettings.h"

namespace Dravel {

// One object, on the user-interface thread. Made while the library is loaded: its construction neither opens
// files nor makes windows.
class Plugin final : public IPluginHandlers {
 public:
    static Plugin& Instance();
    // At loading and unloading. When the process ends, nothing is unmade: its threads are gone by then.
    static void Make();
    static void Unmake() noexcept;

    // From now on a crash of the process leaves a dump. To be called by every entry: loading the library is
    // too early.
    void WatchForCrashes() {
        if (!std::exchange(watching_, true)) InstallCrashDump(folder_.Log());
    }

    // Creates the bar, or shows and focuses it. A call that arrives while one runs does nothing: creating the
    // bar pumps messages.
    void ShowBar() override;
    void SelectedContract(CTagMessageReader& query) override;
    void TradeFromHost(CTagMessageReader& trade) override;
    void EntryQuery() override;
    void PendingItems() override;
    void AskToSave() override;

 private:
    // The log's thread.
    struct LogThread {
        explicit LogThread(CFileLog& log) : log_(log) { log_.Start(); }
        ~LogThread() { log_.Stop(); }
        LogThread(const LogThread&) = delete;
        LogThread& operator=(const LogThread&) = delete;
        CFileLog& log_;
    };

    // Lives as long as the bar's window, and until the calls that are under way when that goes have ended.
    // The bar stands behind what it uses.
    struct OpenBook {
        OpenBook(Plugin& plugin);
        LibraryUse use;  // the host may free the library too early
        LogThread logThread;
        CrashDumpThread crashDumpThread;
        CVELTPXMLSettings settings;
        SettingsGuard guard;
        RememberedAnswers answers;
        NoticeList notices;
        CDravelBar bar;
    };

    // The book that is open, as trades that waited enter it.
    struct WaitingBook final : IWaitingBook {
        explicit WaitingBook(Plugin& owner) : plugin(owner) {}
        bool Prepare(TradeRecord& record) override;
        std::uint64_t Revision() const override;
        void Enter(TradeRecord& record, const WaitingSource& source) override;
        Plugin& plugin;
    };

    Plugin();
    void CreateBar();
    void TellFrameOfLog(void* frame);
    void BarGone();
    void LetGo(std::unique_ptr<OpenBook> gone);
    bool BookThere() const { return open_ && open_->bar.BookThere(); }
    void SettingsCame();
    void EnterWaiting();
    void AskAboutLeft();

    DataFolder folder_;
    CFileLog log_;
    TerminalHost host_;
    ScreenUser user_;
    ManualClients clients_;
    DlgImportReport reportWindow_;
    Entry entry_;
    WaitingBook waitingBook_{*this};
    WaitingTrades waiting_;  // that came while no book could take them
    LeftTrades left_;        // of an earlier run
    std::unique_ptr<OpenBook> open_;
    bool watching_ = false;  // for crashes
    bool showing_ = false;   // ShowBar runs
    bool parting_ = false;   // the bar's window is gone, what it owned is not
};

}  // namespace Dravel

// Start-up, loading and the commands that menu and script share.
#include "Terminal.h"

#include <cstdlib>
#include <cstring>

#include "FrameText.h"
#include "FrameWindow.h"
#include "Text.h"
#include "WindowSearch.h"
#include "message/TagMessageWriter.h"
#include "message/Tags.h"

namespace Dravel::DevHost {
namespace {

constexpr UINT kRunTask = WM_APP + 1;
constexpr wchar_t kTaskClass[] = L"VELTSHostTasks";
constexpr std::uint32_t kFirstBarID = 4101;

Terminal* theTerminal = nullptr;

std::filesystem::path ProgramFolder() {
    wchar_t path[MAX_PATH * 4];
    GetModuleFileNameW(nullptr, path, static_cast<DWORD>(std::size(path)));
    return std::filesystem::path(path).parent_path();
}

std::filesystem::path FirstThere(std::initializer_list<std::filesystem::path> paths) {
    std::error_code ignored;
    for (const auto& path : paths)
        if (!path.empty() && std::filesystem::exists(path, ignored)) return path;
    return {};
}

}  // namespace

Terminal& TheTerminal() {
    return *theTerminal;
}

Terminal::Terminal(Options options) : options_(std::move(options)), folder_(ProgramFolder()), plugin_(log_) {
    theTerminal = this;
    SetCurrentDirectoryW(folder_.c_str());
    WNDCLASSW type{};
    type.lpfnWndProc = TaskProcedure;
    type.hInstance = GetModuleHandleW(nullptr);
    type.lpszClassName = kTaskClass;
    RegisterClassW(&type);
    tasks_ =
        CreateWindowExW(0, kTaskClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, type.hInstance, nullptr);
    LoadMaster();
}

Terminal::~Terminal() {
    UnloadPlugin();
    DestroyWindow(tasks_);
}

void Terminal::LoadMaster() {
    const auto samples = folder_ / "samples";
    const auto contracts =
        FirstThere({options_.master, samples / "SecurityMaster.csv", folder_ / "SecurityMaster.csv"});
    const auto clients = FirstThere({options_.clients, samples / "Clients.csv", folder_ / "Clients.csv"});
    if (!master_.LoadContracts(contracts))
        log_.Add(EntryKind::Note, 0, "no SecurityMaster.csv: requests find nothing");
    if (!master_.LoadClients(clients))
        log_.Add(EntryKind::Note, 0, "no Clients.csv: the terminal knows no client");
    const std::string loaded = NumberText(master_.Contracts().size()) + " contracts, " +
                               NumberText(master_.Clients().size()) + " clients";
    log_.Add(EntryKind::Note, 0, loaded);
}

bool Terminal::CreateFrame() {
    if (frame_) return true;
    frameWindow_ = std::make_unique<FrameWindow>(*this);
    frame_ = frameWindow_->Create();
    return frame_ != nullptr;
}

void Terminal::FrameGone() {
    frame_ = nullptr;
    if (endsWithFrame) PostQuitMessage(0);
}

void Terminal::Run(const std::shared_ptr<Task>& task) {
    PostMessageW(tasks_, kRunTask, 0, reinterpret_cast<LPARAM>(new std::shared_ptr<Task>(task)));
}

LRESULT CALLBACK Terminal::TaskProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != kRunTask) return DefWindowProcW(window, message, wParam, lParam);
    const std::unique_ptr<std::shared_ptr<Task>> task(reinterpret_cast<std::shared_ptr<Task>*>(lParam));
    (*task)->work();
    (*task)->done = true;
    return 0;
}

std::filesystem::path Terminal::PluginPath() const {
    return FirstThere(
        {options_.plugin, folder_ / "PLUGINDLLS" / "Dravel" / "Dravel64R.dll", folder_ / "Dravel64R.dll"});
}

bool Terminal::LoadPlugin(std::string& error) {
    if (!CreateFrame()) return error = "no main frame", false;
    const auto path = PluginPath();
    if (path.empty()) return error = "no Dravel64R.dll in PLUGINDLLS\\Dravel or beside the program", false;
    if (!plugin_.Load(path, error)) return log_.Add(EntryKind::Note, 0, error), false;
    frameWindow_->ShowPlugin();
    return true;
}

void Terminal::UnloadPlugin() {
    if (!plugin_.Loaded()) return;
    if (HWND bar = FindBar()) DestroyWindow(bar);
    plugin_.Unload();
    log_.Add(EntryKind::Note, 0, "plug-in unloaded");
    if (frame_) frameWindow_->ShowPlugin();
}

bool Terminal::OpenBook() {
    return plugin_.OpenBar();
}

bool Terminal::Send(std::uint16_t code, std::vector<std::string> fields, std::string& error, bool broadcast) {
    if (!plugin_.Loaded()) return error = "no plug-in is loaded", false;
    if (code == msg::SelectedContract && fields.empty()) fields.push_back("EntryOrReply=@reply");
    const auto frame = BuildFrame(code, fields, reinterpret_cast<std::uint64_t>(&TakeReply), error);
    if (!frame) return false;
    const std::string_view bytes(reinterpret_cast<const char*>(frame->GetData()), frame->GetLength());
    const bool sent = broadcast || plugin_.TakesBroadcast(code) ? plugin_.SendBroadcast(*frame)
                                                                : plugin_.SendMessage(bytes);
    if (!sent) error = "the plug-in registered no entry for messages";
    return sent;
}

bool Terminal::SendTrade(std::string& error) {
    if (master_.Contracts().empty()) return error = "no contracts are loaded", false;
    const std::size_t count = master_.Contracts().size();
    const SecurityMasterEntry& contract = master_.Contracts()[tradesSent_ % count];
    const auto text = [](const char* field, std::size_t capacity) {
        return std::string(field, strnlen(field, capacity));
    };
    const std::string number = NumberText(++tradesSent_);
    return Send(
        msg::TradeFromHost,
        {"Exchange=" + text(contract.exchange, 48), "SecurityID=" + text(contract.securityID, 48),
         "SecurityType=" + text(contract.securityType, 16), "Symbol=" + text(contract.symbol, 32),
         "ExpiryDate=" + text(contract.expiryText, 32), "OptionType=" + text(contract.optionType, 16),
         "StrikePrice=" + NumberText(contract.strikePrice),
         std::string("Side=") + (tradesSent_ % 2 ? "1" : "2"), "OrderType=1",
         "Quantity=" + NumberText(25 * tradesSent_), "Price=" + NumberText(100 + 0.05 * tradesSent_),
         std::string("ClientID=") +
             (master_.Clients().empty() ? "OWN" : master_.Clients()[tradesSent_ % master_.Clients().size()]),
         "ReferenceText=host trade " + number},
        error);
}

// The plug-in frees the buffer, as it does what a terminal of its maker leaves there.
void Terminal::TakeReply(SelectedContractReply* reply) {
    const std::string_view frame(reinterpret_cast<const char*>(reply->data), reply->length);
    theTerminal->log_.Add(EntryKind::Reply, CodeOf(frame), frame);
    reply->buffer = static_cast<std::uint8_t*>(std::malloc(16));
}

std::uint32_t Terminal::BarID(const wchar_t* title, const wchar_t* key) {
    const std::uint32_t id = kFirstBarID + barIDs_++;
    log_.Add(EntryKind::Callback, 0,
             "GetPluginBarID(" + Narrow(title ? title : L"") + ", " + Narrow(key ? key : L"") + ") -> " +
                 NumberText(id));
    if (reenterOnBarID) {
        reenterOnBarID = false;
        std::string error;
        if (!Send(msg::ShowBar, {}, error)) log_.Add(EntryKind::Note, 0, error);
    }
    return id;
}

}  // namespace Dravel::DevHost

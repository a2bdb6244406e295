// Window half of the main frame: layout, menu commands and the two virtual lists.
#include "FrameWindow.h"

#include <algorithm>

#include "FrameMenu.h"
#include "FrameText.h"
#include "Terminal.h"
#include "Text.h"
#include "WindowSearch.h"
#include "message/Tags.h"

namespace Dravel::DevHost {
namespace {

constexpr wchar_t kFrameClass[] = L"VELTSHostFrame", kDeskClass[] = L"VELTSHostDesk";
constexpr UINT_PTR kRefreshTimer = 1;
constexpr UINT kRefreshInterval = 100;
constexpr UINT kRefreshShare = 20;  // the list may take one part of so many of the time
constexpr int kContractsID = 11, kMessagesID = 12, kDetailsID = 13, kStatusID = 14;
constexpr int kDetailsWidth = 300, kGap = 3;
constexpr WORD kImportCommand = 40004;

struct Column {
    const wchar_t* title;
    int width;
};
constexpr Column kContractColumns[] = {{L"Exchange", 80}, {L"SecurityID", 90}, {L"Type", 80},
                                       {L"Symbol", 120},  {L"Expiry", 90},     {L"Option", 60},
                                       {L"Strike", 80},   {L"Divisor", 80}};
constexpr Column kMessageColumns[] = {
    {L"Time", 70}, {L"Direction", 90}, {L"Code", 60}, {L"Name", 150}, {L"Fields", 560}};

template <std::size_t N>
HWND MakeList(HWND parent, int id, const Column (&columns)[N]) {
    constexpr DWORD kStyle =
        WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_OWNERDATA | LVS_SINGLESEL | LVS_SHOWSELALWAYS;
    HWND list = CreateWindowExW(WS_EX_CLIENTEDGE, WC_LISTVIEWW, L"", kStyle, 0, 0, 0, 0, parent,
                                reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr),
                                nullptr);
    ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    int index = 0;
    for (const Column& column : columns) {
        LVCOLUMNW definition{};
        definition.mask = LVCF_TEXT | LVCF_WIDTH;
        definition.pszText = const_cast<wchar_t*>(column.title);
        definition.cx = column.width;
        SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(index++),
                     reinterpret_cast<LPARAM>(&definition));
    }
    return list;
}

void RegisterType(const wchar_t* name, WNDPROC procedure, int background) {
    WNDCLASSW type{};
    type.lpfnWndProc = procedure;
    type.hInstance = GetModuleHandleW(nullptr);
    type.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
    type.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    type.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(background + 1));
    type.lpszClassName = name;
    RegisterClassW(&type);  // a second frame finds it there already
}

template <std::size_t N>
std::string Bounded(const char (&text)[N]) {
    return {text, strnlen(text, N)};
}

std::string Seconds(std::uint64_t milliseconds) {
    const std::string rest = NumberText(milliseconds % 1000);
    return NumberText(milliseconds / 1000) + '.' + std::string(3 - rest.size(), '0') + rest;
}

bool IsFrame(EntryKind kind) {
    return kind != EntryKind::Callback && kind != EntryKind::Note;
}

}  // namespace

HWND FrameWindow::Create() {
    RegisterType(kFrameClass, FrameProcedure, COLOR_BTNFACE);
    RegisterType(kDeskClass, DeskProcedure, COLOR_BTNFACE);
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    font_ = CreateFontIndirectW(&metrics.lfMessageFont);
    HWND window = CreateWindowExW(0, kFrameClass, L"VELTS Terminal", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0,
                                  0, 1260, 760, nullptr, MakeFrameMenu(), GetModuleHandleW(nullptr), this);
    if (!window) return nullptr;
    ShowWindow(window, SW_SHOW);
    ShowPlugin();
    SetForegroundWindow(window);
    return window;
}

LRESULT CALLBACK FrameWindow::FrameProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto self = static_cast<FrameWindow*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        self->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto self = reinterpret_cast<FrameWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return self ? self->Handle(window, message, wParam, lParam)
                : DefWindowProcW(window, message, wParam, lParam);
}

LRESULT FrameWindow::Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == logMessage_) return PluginLogged(wParam), 0;
    switch (message) {
        case WM_CREATE:
            CreateChildren(window);
            return 0;
        case WM_SIZE:
            LayFrame();
            return 0;
        case WM_COMMAND:
            Do(LOWORD(wParam));
            return 0;
        case WM_ACTIVATE:
            KeepFocus(LOWORD(wParam) == WA_INACTIVE);
            break;
        case WM_SETFOCUS:
            KeepFocus(false);
            return 0;
        case WM_TIMER:
            Refresh();
            return 0;
        case WM_INITMENUPOPUP:
            UpdateFrameMenu(GetMenu(window), terminal_.Loaded().Loaded(), follow_, showContracts_);
            return 0;
        case WM_NCDESTROY:
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            DeleteObject(font_);
            window_ = desk_ = nullptr;
            terminal_.FrameGone();
            break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// The plug-in wrote a warning or an error to its log.
void FrameWindow::PluginLogged(WPARAM level) {
    terminal_.Log().Add(EntryKind::Note, 0, "KRV_MSG_LOG, level " + NumberText(std::uint64_t{level}));
}

// Whoever had the keyboard within the frame gets it back after a dialog or another program.
void FrameWindow::KeepFocus(bool leaving) {
    const HWND focus = GetFocus();
    if (leaving && focus && IsChild(window_, focus)) lastFocus_ = focus;
    if (!leaving && focus == window_ && IsChild(window_, lastFocus_)) SetFocus(lastFocus_);
}

void FrameWindow::CreateChildren(HWND window) {
    HINSTANCE instance = GetModuleHandleW(nullptr);
    desk_ = CreateWindowExW(0, kDeskClass, L"", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0,
                            0, 0, 0, window, nullptr, instance, this);
    status_ =
        CreateWindowExW(0, STATUSCLASSNAMEW, L"", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0, window,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(kStatusID)), instance, nullptr);
    contracts_ = MakeList(desk_, kContractsID, kContractColumns);
    messages_ = MakeList(desk_, kMessagesID, kMessageColumns);
    details_ = CreateWindowExW(
        WS_EX_CLIENTEDGE, L"EDIT", L"",
        WS_CHILD | WS_VISIBLE | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL, 0, 0, 0, 0, desk_,
        reinterpret_cast<HMENU>(static_cast<INT_PTR>(kDetailsID)), instance, nullptr);
    for (HWND child : {contracts_, messages_, details_})
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font_), 0);
    ListView_SetItemCountEx(contracts_, static_cast<int>(terminal_.Master().Contracts().size()), 0);
    SetTimer(window, kRefreshTimer, kRefreshInterval, nullptr);
    Refresh();
}

void FrameWindow::LayFrame() {
    RECT client, status;
    SendMessageW(status_, WM_SIZE, 0, 0);
    GetClientRect(window_, &client);
    GetWindowRect(status_, &status);
    MoveWindow(desk_, 0, 0, client.right, std::max<LONG>(0, client.bottom - (status.bottom - status.top)),
               TRUE);
}

LRESULT CALLBACK FrameWindow::DeskProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto self = reinterpret_cast<FrameWindow*>(GetWindowLongPtrW(GetParent(window), GWLP_USERDATA));
    return self ? self->HandleDesk(window, message, wParam, lParam)
                : DefWindowProcW(window, message, wParam, lParam);
}

LRESULT FrameWindow::HandleDesk(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SIZE && details_) return LayDesk(), 0;
    if (message == WM_NOTIFY) return Notify(reinterpret_cast<const NMHDR*>(lParam));
    return DefWindowProcW(window, message, wParam, lParam);
}

void FrameWindow::LayDesk() {
    RECT area;
    GetClientRect(desk_, &area);
    const int top = showContracts_ ? area.bottom * 2 / 5 : -kGap;
    const int left = area.right > 3 * kDetailsWidth ? area.right - kDetailsWidth : area.right * 2 / 3;
    ShowWindow(contracts_, showContracts_ ? SW_SHOW : SW_HIDE);
    MoveWindow(contracts_, 0, 0, area.right, std::max(0, top), TRUE);
    MoveWindow(messages_, 0, top + kGap, std::max(0, left - kGap),
               std::max<LONG>(0, area.bottom - top - kGap), TRUE);
    MoveWindow(details_, left, top + kGap, area.right - left, std::max<LONG>(0, area.bottom - top - kGap),
               TRUE);
}

void FrameWindow::ShowPlugin() {
    const Plugin& plugin = terminal_.Loaded();
    std::wstring title = L"VELTS Terminal", status = L"No plug-in is loaded";
    if (plugin.Loaded()) {
        title += L" - " + plugin.Title();
        status = plugin.Path().native();
    }
    SetWindowTextW(window_, title.c_str());
    SendMessageW(status_, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(status.c_str()));
    std::wstring offer = L"&Open book";
    for (const BarOffer& bar : plugin.Bars())
        offer += L": " + bar.group + L" - " + bar.name;
    ModifyMenuW(GetMenu(window_), kOpenBook, MF_BYCOMMAND | MF_STRING, kOpenBook, offer.c_str());
    UpdateFrameMenu(GetMenu(window_), plugin.Loaded(), follow_, showContracts_);
    DrawMenuBar(window_);
}

void FrameWindow::Complain(const std::string& error) {
    if (!error.empty()) MessageBoxW(window_, Wide(error).c_str(), L"VELTS Terminal", MB_ICONWARNING);
}

void FrameWindow::Send(std::uint16_t code) {
    std::string error;
    terminal_.Send(code, {}, error);
    Complain(error);
}

// Asks the grid for its import dialog, as its own menu does.
void FrameWindow::Import() {
    if (HWND grid = FindGrid()) return void(PostMessageW(grid, WM_COMMAND, kImportCommand, 0));
    Complain("The book is not open.");
}

void FrameWindow::Do(UINT command) {
    std::string error;
    switch (command) {
        case kLoadPlugin:
            terminal_.LoadPlugin(error);
            break;
        case kUnloadPlugin:
            terminal_.UnloadPlugin();
            break;
        case kImportTest:
            return Import();
        case kExit:
            PostMessageW(window_, WM_CLOSE, 0, 0);
            break;
        case kOpenBook:
            terminal_.OpenBook();
            break;
        case kOpenByMessage:
            return Send(msg::ShowBar);
        case kAskToSave:
            return Send(msg::AskToSave);
        case kPendingItems:
            return Send(msg::PendingItems);
        case kSelectedContract:
            return Send(msg::SelectedContract);
        case kEntryQuery:
            return Send(msg::EntryQuery);
        case kSendTrade:
            terminal_.SendTrade(error);
            break;
        case kSendTenTrades:
            for (int i = 0; i < 10 && error.empty(); ++i)
                terminal_.SendTrade(error);
            break;
        case kFollowMessages:
            follow_ = !follow_;
            break;
        case kShowContracts:
            showContracts_ = !showContracts_;
            LayDesk();
            break;
        case kClearMessages:
            terminal_.Log().Clear();
            break;
    }
    Complain(error);
}

// Runs on a timer, so that a thousand frames between two ticks cost one repaint.
void FrameWindow::Refresh() {
    const std::size_t size = terminal_.Log().Size();
    if (size == shown_) return;
    shown_ = size;
    const ULONGLONG start = GetTickCount64();
    ListView_SetItemCountEx(messages_, static_cast<int>(size), LVSICF_NOSCROLL);
    if (follow_ && size) ListView_EnsureVisible(messages_, static_cast<int>(size) - 1, FALSE);
    const std::wstring text = Wide(NumberText(size) + " messages");
    RECT area;
    GetClientRect(window_, &area);
    const int parts[] = {static_cast<int>(area.right) - 200, -1};
    SendMessageW(status_, SB_SETPARTS, 2, reinterpret_cast<LPARAM>(parts));
    SendMessageW(status_, SB_SETTEXTW, 1, reinterpret_cast<LPARAM>(text.c_str()));
    // A flood of frames must not be held up by showing it.
    UpdateWindow(messages_);
    const auto took = static_cast<UINT>(GetTickCount64() - start);
    SetTimer(window_, kRefreshTimer, std::max(kRefreshInterval, took * kRefreshShare), nullptr);
}

LRESULT FrameWindow::Notify(const NMHDR* header) {
    if (header->code == LVN_GETDISPINFOW) {
        LVITEMW& item = const_cast<NMLVDISPINFOW*>(reinterpret_cast<const NMLVDISPINFOW*>(header))->item;
        if (item.mask & LVIF_TEXT) header->hwndFrom == contracts_ ? FillContract(item) : FillMessage(item);
    }
    if (header->code == LVN_ITEMCHANGED && header->hwndFrom == messages_) {
        const auto* change = reinterpret_cast<const NMLISTVIEW*>(header);
        if (change->uNewState & LVIS_SELECTED) ShowDetails(change->iItem);
    }
    return 0;
}

void FrameWindow::FillContract(LVITEMW& item) {
    const auto& contracts = terminal_.Master().Contracts();
    if (static_cast<std::size_t>(item.iItem) >= contracts.size()) return;
    const SecurityMasterEntry& c = contracts[static_cast<std::size_t>(item.iItem)];
    const std::string cells[] = {Bounded(c.exchange),
                                 Bounded(c.securityID),
                                 Bounded(c.securityType),
                                 Bounded(c.symbol),
                                 Bounded(c.expiryText),
                                 Bounded(c.optionType),
                                 c.strikePrice > 0 ? NumberText(c.strikePrice) : "",
                                 Bounded(c.divisorKey)};
    cell_ = Wide(cells[item.iSubItem]);
    item.pszText = cell_.data();
}

void FrameWindow::FillMessage(LVITEMW& item) {
    const LogEntry entry = terminal_.Log().At(static_cast<std::size_t>(item.iItem));
    const bool frame = IsFrame(entry.kind);
    switch (item.iSubItem) {
        case 0:
            cell_ = Wide(Seconds(entry.time));
            break;
        case 1:
            cell_ = Wide(KindName(entry.kind));
            break;
        case 2:
            cell_ = entry.code ? Wide(NumberText(entry.code)) : L"";
            break;
        case 3:
            cell_ = frame ? Wide(CodeName(entry.code)) : L"";
            break;
        default:
            cell_ = Wide(frame ? FieldLine(entry.bytes) : std::string(entry.bytes));
    }
    item.pszText = cell_.data();
}

void FrameWindow::ShowDetails(int index) {
    const LogEntry entry = terminal_.Log().At(static_cast<std::size_t>(index));
    std::string text;
    if (!IsFrame(entry.kind)) text = entry.bytes;
    if (IsFrame(entry.kind)) {
        text = NumberText(entry.code) + " " + CodeName(entry.code) + ", " + NumberText(entry.bytes.size()) +
               " bytes\r\n";
        for (const FieldText& field : Fields(entry.bytes))
            text += "\r\n" + field.name + ": " + field.value;
    }
    SetWindowTextW(details_, Wide(text).c_str());
}

}  // namespace Dravel::DevHost

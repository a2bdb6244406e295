// Counts handles, threads, windows and objects of this process.
#include "Resources.h"

#include <windows.h>

#include <intrin.h>
#include <tlhelp32.h>

#include <algorithm>
#include <vector>

#include "Text.h"
#include "WindowSearch.h"

namespace Dravel::DevHost {
namespace {

// Wine leaves GetProcessHandleCount at 0, so the system's table of handles is asked on both.
std::uint32_t CountHandles() {
    constexpr ULONG kExtendedHandles = 64;
    using Query = LONG(WINAPI*)(ULONG, void*, ULONG, ULONG*);
    struct Handle {
        void* object;
        ULONG_PTR process, value;
        ULONG access;
        USHORT trace, type;
        ULONG attributes, reserved;
    };
    struct Table {
        ULONG_PTR count, reserved;
        Handle handles[1];
    };
    const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<std::uint64_t> space(1 << 15);
    LONG status = -1;
    while (query && space.size() < (1 << 24)) {
        status = query(kExtendedHandles, space.data(), static_cast<ULONG>(space.size() * 8), nullptr);
        if (status >= 0) break;
        space.resize(space.size() * 2);
    }
    if (status < 0) return 0;
    const auto* table = reinterpret_cast<const Table*>(space.data());
    std::uint32_t count = 0;
    for (ULONG_PTR i = 0; i < table->count; ++i)
        count += table->handles[i].process == GetCurrentProcessId();
    return count;
}

std::uint32_t CountThreads() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return 0;
    std::uint32_t count = 0;
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
        count += entry.th32OwnerProcessID == GetCurrentProcessId();
    CloseHandle(snapshot);
    return count;
}

std::uint32_t CountWindows() {
    std::size_t count = 0;
    for (HWND top : TopWindows())
        count += 1 + Descendants(top).size();
    for (HWND window = nullptr; (window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr));) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        count += process == GetCurrentProcessId();
    }
    return static_cast<std::uint32_t>(count);
}

// Wine counts neither USER nor GDI objects. Of the former it knows menus by the lower half of their handle.
std::uint32_t CountMenus() {
    std::uint32_t count = 0;
    for (std::uintptr_t handle = 0x20; handle < 0xFFF0; handle += 2)
        count += IsMenu(reinterpret_cast<HMENU>(handle)) != 0;
    return count;
}

// The table of GDI objects stands where Windows had it of old. The device context of a window is left out
// with the region and the bitmap that belong to it: Wine keeps some fifty of them for the windows to come.
std::uint32_t CountWineGdiObjects() {
    struct Entry {
        std::uint64_t object;
        std::uint32_t owner;
        std::uint16_t unique;
        std::uint8_t type, flags;
        std::uint64_t user;
    };
    constexpr std::size_t kEntries = 0x4000, kProcessBlock = 0x60, kTable = 0xF8;
    constexpr unsigned kKind = 0x7F, kWindowContext = 0x01;
    const auto block = static_cast<std::uintptr_t>(__readgsqword(kProcessBlock));
    const auto* const table = *reinterpret_cast<const Entry* const*>(block + kTable);
    if (!table) return 0;
    const auto used = std::count_if(table, table + kEntries, [](const Entry& e) { return e.type != 0; });
    const auto contexts = std::count_if(table, table + kEntries, [](const Entry& e) {
        return e.type != 0 && (e.unique & kKind) == kWindowContext;
    });
    return static_cast<std::uint32_t>(used - 3 * contexts);
}

// What is taken from the heaps, ours and the plug-in's, who share one. The pages of the process say little:
// the system takes and keeps them as it likes.
std::uint64_t CountHeap() {
    HANDLE heaps[64];
    const DWORD count = std::min<DWORD>(GetProcessHeaps(64, heaps), 64);
    std::uint64_t bytes = 0;
    for (DWORD i = 0; i < count; ++i) {
        PROCESS_HEAP_ENTRY block{};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &block))
            if (block.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += block.cbData;
        HeapUnlock(heaps[i]);
    }
    return bytes;
}

bool OnWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace

ResourceCount CountResources() {
    ResourceCount count;
    count.handles = CountHandles();
    count.threads = CountThreads();
    count.windows = CountWindows();
    const bool wine = OnWine();
    count.user = wine ? CountMenus() : GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    count.gdi = wine ? CountWineGdiObjects() : GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    count.memory = CountHeap();
    return count;
}

std::string ResourceText(const ResourceCount& count) {
    return NumberText(count.handles) + " handles, " + NumberText(count.threads) + " threads, " +
           NumberText(count.windows) + " windows, " + NumberText(count.user) + " USER and " +
           NumberText(count.gdi) + " GDI objects, " + NumberText(count.memory / 1024) + " KB";
}

}  // namespace Dravel::DevHost

#include "toolkit/Module.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <string>

#include "toolkit/ActivationContext.h"

namespace Dravel {
namespace {

constexpr std::size_t kMaxClasses = 16;

HINSTANCE g_module;
ILog* g_log;
std::array<const wchar_t*, kMaxClasses> g_classes;
std::size_t g_classCount;

bool Registered(const wchar_t* name) {
    return std::any_of(g_classes.begin(), g_classes.begin() + g_classCount,
                       [&](const wchar_t* known) { return lstrcmpW(known, name) == 0; });
}

}  // namespace

void SetModule(void* instance) {
    g_module = static_cast<HINSTANCE>(instance);
}
void* Module() {
    return g_module;
}

void SetFailureLog(ILog* log) {
    g_log = log;
}

void ReportFailure(const char* where, const char* what) noexcept {
    try {
        if (g_log != nullptr) g_log->Line(LogLevel::Error, where, what);
    } catch (...) {  // nothing is left to tell it to
    }
}

bool RegisterWindowClass(const wchar_t* name, void* procedure, std::uint32_t style, std::uint32_t cursor) {
    if (Registered(name)) return true;
    if (g_classCount == kMaxClasses) return false;
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.style = style;
    description.lpfnWndProc = reinterpret_cast<WNDPROC>(procedure);
    description.hInstance = g_module;
    description.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(cursor));
    description.lpszClassName = name;
    UnregisterClassW(name, g_module);
    if (RegisterClassExW(&description) == 0) return false;
    g_classes[g_classCount++] = name;
    return true;
}

void ReleaseModule() noexcept {
    const auto end = g_classes.begin() + g_classCount;
    const auto kept = std::remove_if(
        g_classes.begin(), end, [](const wchar_t* name) { return UnregisterClassW(name, g_module) != 0; });
    g_classCount = static_cast<std::size_t>(kept - g_classes.begin());
    ReleaseActivationContext();
}

}  // namespace Dravel

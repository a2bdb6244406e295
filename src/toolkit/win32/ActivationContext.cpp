#include "toolkit/ActivationContext.h"

#include <windows.h>

#include "toolkit/Module.h"

namespace Dravel {
namespace {

constexpr WORD kManifestResource = 2;  // where a library keeps its own manifest

HANDLE g_context = INVALID_HANDLE_VALUE;

HANDLE Context() {
    if (g_context != INVALID_HANDLE_VALUE || Module() == nullptr) return g_context;
    wchar_t path[1024];
    const DWORD length = GetModuleFileNameW(static_cast<HMODULE>(Module()), path, 1024);
    if (length == 0 || length == 1024) return g_context;
    ACTCTXW request{};
    request.cbSize = sizeof request;
    request.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    request.lpSource = path;
    request.lpResourceName = MAKEINTRESOURCEW(kManifestResource);
    request.hModule = static_cast<HMODULE>(Module());
    g_context = CreateActCtxW(&request);
    return g_context;
}

}  // namespace

ActivationScope::ActivationScope() noexcept {
    ULONG_PTR cookie = 0;
    const HANDLE context = Context();
    active_ = context != INVALID_HANDLE_VALUE && ActivateActCtx(context, &cookie) != 0;
    cookie_ = cookie;
}

ActivationScope::~ActivationScope() {
    if (active_) DeactivateActCtx(0, cookie_);
}

void ReleaseActivationContext() noexcept {
    if (g_context != INVALID_HANDLE_VALUE) ReleaseActCtx(g_context);
    g_context = INVALID_HANDLE_VALUE;
}

}  // namespace Dravel

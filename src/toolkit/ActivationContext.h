// Makes windows of the current controls (comctl32 version 6) although the host has no manifest for them: the
// library's own one, resource 2, is active while an object of this class lives. Put one round each creation
// of windows or dialogs.
#pragma once

#include <cstdint>

namespace Dravel {

class ActivationScope {
 public:
    ActivationScope() noexcept;
    ~ActivationScope();
    ActivationScope(const ActivationScope&) = delete;
    ActivationScope& operator=(const ActivationScope&) = delete;

    // False: the module has no manifest, windows get the host's controls.
    bool Active() const { return active_; }

 private:
    std::uintptr_t cookie_ = 0;
    bool active_ = false;
};

// Gives back the context that the first scope made. Called by ReleaseModule.
void ReleaseActivationContext() noexcept;

}  // namespace Dravel

// How another thread gets work done on the user-interface thread.
#pragma once

#include <functional>

namespace Dravel {

class IUiThread {
 public:
    virtual ~IUiThread() = default;
    // Any thread. The work runs later on the user-interface thread, begun in the order posted, also while an
    // earlier piece has a box open; never inside Post.
    // What was not run when the bar is destroyed is dropped.
    virtual void Post(std::function<void()> work) = 0;
};

}  // namespace Dravel

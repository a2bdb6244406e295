#include "plugin/HostCallbacks.h"

#include <algorithm>

namespace Dravel {

HostCallbacks::HostCallbacks(Function (*lookUp)(const char* name)) : functions_{} {
    std::transform(kCallbackNames.begin(), kCallbackNames.end(), functions_.begin(), lookUp);
}

}  // namespace Dravel

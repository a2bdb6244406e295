// Names of files that carry a date.
#pragma once

#include <string>
#include <string_view>

#include "platform/Clock.h"

namespace Dravel {

// The name that a file name format means at the clock's present time. "{pattern}" becomes the local time
// under that display pattern, once; what stands in front and behind is kept. A format without such braces has
// tokens: the first "dd", "mm" (the month), "yyyy" and "yy" become day, month and year; "yy" stays in years
// that do not begin with 20, and in 2000.
std::string ExpandFileName(std::string_view format, const IClock& clock);

}  // namespace Dravel

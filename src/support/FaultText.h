// Why the disk refused, in words for the user.
#pragma once

#include <string>
#include <string_view>

#include "platform/Files.h"

namespace Dravel {

// A sentence: what could not be done, and why. "The file could not be opened: the disk is full."
std::string FaultText(std::string_view step, const FileStatus& status);

}  // namespace Dravel

// Who sits at the machine.
#pragma once

#include <string>

namespace Dravel {

// The name of the account, in UTF-8; empty when the system does not tell.
std::string AccountName();

}  // namespace Dravel

#include "platform/Account.h"

#include <pwd.h>
#include <unistd.h>

namespace Dravel {

std::string AccountName() {
    const passwd* const account = getpwuid(geteuid());
    return account && account->pw_name ? account->pw_name : "";
}

}  // namespace Dravel

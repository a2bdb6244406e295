// Answers that the user asked not to be asked for again.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "toolkit/Registry.h"

namespace Dravel {

// Kept in the settings under MessageBox\<caption>\<hash of the text>. User-interface thread.
class RememberedAnswers {
 public:
    explicit RememberedAnswers(CKRVPRegistry& settings) : settings_(settings) {}

    // The identifier of the button that was pressed then.
    std::optional<std::uint32_t> Find(std::string_view caption, std::string_view text) const;
    void Remember(std::string_view caption, std::string_view text, std::uint32_t button);

 private:
    CKRVPRegistry& settings_;
};

}  // namespace Dravel

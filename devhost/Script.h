// A script: named commands, one a line, with "#" comments, quoted words and blocks that repeat.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Dravel::DevHost {

// One command, or a block when `body` is not empty ("repeat N {" to "}"). Words are UTF-8 with quotes and
// escapes undone.
struct Statement {
    int line = 0;
    std::vector<std::string> words;
    std::uint32_t repeat = 1;
    std::vector<Statement> body;
};

// Words are separated by blanks; "..." holds blanks together and knows \" \\ \n \r \t. ";" ends a command
// within a line. False, with `error` naming the line, when a quote or a brace is not closed.
bool ParseScript(std::string_view text, std::vector<Statement>& statements, std::string& error);

}  // namespace Dravel::DevHost

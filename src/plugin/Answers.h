// The frames with which the plug-in answers and announces itself to the terminal.
#pragma once

#include <cstdint>
#include <string_view>

class CTagMessageReader;
class CTagMessageWriter;

namespace Dravel {

// Cells of the selected row as the grid shows them, in the ANSI code page.
struct SelectedCells {
    std::string_view exchange, securityID, clientID, price;
};

// The terminal's function that a selected-contract query wants to be answered through; 0: no answer is
// wanted.
std::uint64_t ReplyAddress(CTagMessageReader& query);

// The fields of the answer, behind its message code: none without a row or when the row names no contract.
void BuildSelectedContract(CTagMessageWriter& frame, const SelectedCells* row);

// Calls the terminal's function with the finished frame and frees what it leaves behind. `address` not 0.
// False: the function threw or faulted.
bool Reply(std::uint64_t address, CTagMessageWriter& frame);

// The fields of the announcement of the message entry, behind its message code.
void BuildEntryAnnouncement(CTagMessageWriter& frame, std::uint64_t onPluginMessage);

}  // namespace Dravel

#include "toolkit/EscapeRule.h"

#include <gtest/gtest.h>

#include <string>

namespace Dravel {
namespace {

// A keyboard and somebody who watches: 'e' an Escape that a cell, list or row takes, 'E' one that reaches the
// bar, 'r' the repetition of a held one, 'd' a dialog's end, a digit that many tenths of a second. Gives an
// 'h' per Escape that hides, an 'a' per one that is acted on.
std::string Played(std::string_view keys) {
    EscapeRule rule;
    std::uint64_t now = 10'000;
    std::string said;
    for (const char key : keys) {
        if (key >= '0' && key <= '9') now += static_cast<std::uint64_t>(key - '0') * 100;
        if (key == 'd') rule.Ended(now);
        if ((key == 'e' || key == 'E' || key == 'r') && rule.Pressed(now, key == 'r')) said += 'a';
        if (key == 'E' && rule.Hides()) said += 'h';
    }
    return said;
}

TEST(EscapeRuleTest, HidesOnlyByAPressOfItsOwn) {
    const struct {
        const char* keys;
        const char* said;
        const char* why;
    } cases[] = {
        {"E", "ah", "nothing was open"},
        {"E9E", "ahah", "shown again meanwhile"},
        {"e0E", "aa", "one too many"},
        {"e4E", "aa", "still within half a second"},
        {"e5E", "aah", "half a second later it is meant"},
        {"e3e3E", "aaa", "counted from the last that took something back"},
        {"e3E3E", "aaah", "one that did nothing does not begin the half second anew"},
        {"e9r1r1r", "a", "a held one counts once"},
        {"err9E", "aah", "and the next press is one of its own"},
        {"rrr", "", "held since another window had the keyboard"},
        {"d1E", "a", "it was meant for the dialog"},
        {"d5E", "ah", "not any more"},
        {"9d1e9E", "aah", "what comes later counts"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Played(c.keys), c.said) << c.keys << ": " << c.why;
}

}  // namespace
}  // namespace Dravel

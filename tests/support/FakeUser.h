// A person who answers as was prepared, and remembers what was shown.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "host/User.h"

namespace Dravel::Test {

class FakeUser final : public IUser {
 public:
    // Every box as "caption|text".
    std::vector<std::string> boxes;
    std::vector<Buttons> buttons;
    std::vector<Icon> icons;
    std::vector<std::string> notices;
    // Answers to come; kAnswerOk when there are none left.
    std::deque<std::uint32_t> answers;
    // Called while a box is shown, as a timer would be.
    std::function<void()> whileShown;

    std::uint32_t Box(std::string_view text, std::string_view caption, Buttons set, Icon icon,
                      std::uint8_t) override {
        boxes.push_back(std::string(caption) + "|" + std::string(text));
        buttons.push_back(set);
        icons.push_back(icon);
        if (whileShown) whileShown();
        if (answers.empty()) return kAnswerOk;
        const std::uint32_t answer = answers.front();
        answers.pop_front();
        return answer;
    }
    std::uint32_t Ask(std::string_view text, Buttons set, QuestionEnd& end) override {
        bool ended = false;
        end.Opened([&ended] { ended = true; });
        const std::uint32_t answer = Box(text, "Dravel", set, Icon::Question, 0);
        end.Closed();
        return ended ? 0 : answer;
    }
    void Notice(std::string_view text) override { notices.emplace_back(text); }
};

}  // namespace Dravel::Test

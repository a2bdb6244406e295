// A log that keeps its lines.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "support/Log.h"

namespace Dravel::Test {

class FakeLog final : public ILog {
 public:
    void Line(LogLevel, std::string_view context, std::string_view text) override {
        const std::lock_guard guard(mutex_);
        lines.push_back(std::string(context) + ": " + std::string(text));
    }
    bool Has(std::string_view part) const {
        for (const std::string& line : lines) {
            if (line.find(part) != std::string::npos) return true;
        }
        return false;
    }
    std::vector<std::string> lines;

 private:
    std::mutex mutex_;
};

}  // namespace Dravel::Test

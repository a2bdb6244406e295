#include "support/FaultText.h"

namespace Dravel {

std::string FaultText(std::string_view step, const FileStatus& status) {
    static constexpr struct {
        FileFault fault;
        const char* words;
    } kWords[] = {
        {FileFault::NotFound, "the file is gone"}, {FileFault::PathNotFound, "the folder is gone"},
        {FileFault::Exists, "the name is taken"},  {FileFault::InUse, "another program holds the file"},
        {FileFault::Full, "the disk is full"},     {FileFault::Denied, "access denied"},
    };
    std::string reason(step);
    for (const auto& entry : kWords) {
        if (entry.fault == status.fault) return reason + ": " + entry.words + ".";
    }
    return reason + ": the disk reports error " + std::to_string(status.code) + ".";
}

}  // namespace Dravel

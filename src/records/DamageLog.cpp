#include "records/DamageLog.h"

#include <string>

namespace Dravel {

namespace {

constexpr char kContext[] = "BookFile";
constexpr std::size_t kMostOfOne = 140;  // bytes that one frame adds to a line

std::string OneFrame(const DamagedFrame& frame) {
    static constexpr struct {
        damage::Kinds kind;
        const char* words;
    } kWords[] = {
        {damage::NotAsSaved, " not as saved"},
        {damage::NoIdentifier, " no identifier"},
        {damage::NoDeletedMark, " no deleted mark"},
        {damage::MarkedDeleted, " marked as deleted"},
        {damage::Torn, " torn"},
        {damage::NotShown, " not shown"},
    };
    std::string text = " " + std::to_string(frame.line) + "/" + std::to_string(frame.identifier);
    for (const auto& entry : kWords) {
        if (frame.kinds & entry.kind) text += entry.words;
    }
    return text + ";";
}

// As many to a line of the log as fit.
void LogFrames(ILog& log, std::span<const DamagedFrame> frames) {
    std::string line;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        line += OneFrame(frames[i]);
        if (i + 1 < frames.size() && line.size() <= kMaxLogText - kMostOfOne) continue;
        log.Line(LogLevel::Warning, kContext, "Damaged frames, line/trade:" + line);
        line.clear();
    }
}

}  // namespace

void LogDamage(ILog& log, const KRV::VELT::TradeLoadReport& report, std::span<const DamagedFrame> frames) {
    log.Line(LogLevel::Warning, kContext,
             "The record file was not read in full: " + std::to_string(report.bytesPassedOver) +
                 " bytes passed over, " + std::to_string(report.otherFrames) +
                 " frames that are no trades, " + std::to_string(report.damagedFrames) + " frames damaged, " +
                 std::to_string(report.failedFrames) + " trades refused" +
                 (report.complete ? "" : ", and the disk failed on the way"));
    if (!report.asSaved) {
        log.Line(LogLevel::Warning, kContext,
                 "The record file is not as it was saved: it holds " + std::to_string(report.savedFound) +
                     " of " + std::to_string(report.savedFrames) + " saved frames");
    }
    LogFrames(log, frames);
}

}  // namespace Dravel

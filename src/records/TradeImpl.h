// A record file of trades.
#pragma once

#include <cstdint>
#include <functional>

#include "records/FileImpl.h"
#include "records/TradeFrame.h"

namespace KRV::VELT {

// Given each trade of the file, in the file's order. What it throws counts the frame as failed.
using TradeSink = std::function<void(const TradeRecord& trade, bool deleted)>;

// What a load met.
struct TradeLoadReport {
    bool complete = false;              // the whole file was read
    std::uint64_t trades = 0;           // handed to the sink, those with the deleted mark included
    std::uint64_t deleted = 0;          // of these, with the deleted mark
    std::uint64_t otherFrames = 0;      // well-formed frames that are no trades
    std::uint64_t failedFrames = 0;     // trades that the sink would not take
    std::uint64_t damagedFrames = 0;    // trades whose frame was cut short, or had a wrong length
    std::uint64_t bytesPassedOver = 0;  // no trade was made of them, nor were they another frame

    bool Clean() const {
        return complete && otherFrames + failedFrames + damagedFrames + bytesPassedOver == 0;
    }
};

class CKRVTradeImpl : public Base::CKRVFileImpl {
 public:
    // `master`, when there is one, is asked for the security of each trade read.
    CKRVTradeImpl(Dravel::IFiles& files, Dravel::IClock& clock, Dravel::ILog& log,
                  const Base::RecordFilePlace& place, Dravel::ISecurityMaster* master = nullptr);

    // Loads the open file into `sink`. Without a sink the file does not agree to a load.
    TradeLoadReport LoadInto(TradeSink sink);
    // Writes one trade behind the others, straight into the live file: killed half-way it leaves a torn last
    // frame, which the next load passes over. The book as a whole is saved by BookFile::Save.
    bool Append(const TradeRecord& trade, bool deleted);

 protected:
    std::size_t ReadFrame(CTagMessageReader& frame) override;
    bool AgreesToLoad() override { return sink_ != nullptr; }
    void PassedOver(std::uint64_t bytes) override { report_.bytesPassedOver += bytes; }
    void FrameFailed() override { ++report_.failedFrames; }

 private:
    void ReadOwnPart(const CTagMessageReader& frame, std::size_t length);
    void HandOn(const TradeRecord& trade, bool deleted);

    Dravel::ISecurityMaster* master_;
    TradeSink sink_;
    TradeLoadReport report_;
};

}  // namespace KRV::VELT

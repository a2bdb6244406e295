// A record file of trades.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "records/BookSums.h"
#include "records/FileImpl.h"
#include "records/TradeFrame.h"

namespace KRV::VELT {

// Given each trade of the file, in the file's order. What it throws counts the frame as failed.
using TradeSink = std::function<void(const TradeRecord& trade, bool deleted)>;

// What a load met.
struct TradeLoadReport {
    static constexpr std::size_t kMostListed = 100;

    bool complete = false;              // the whole file was read
    std::uint64_t trades = 0;           // handed to the sink, those with the deleted mark included
    std::uint64_t deleted = 0;          // of these, with the deleted mark
    std::uint64_t otherFrames = 0;      // well-formed frames that are no trades
    std::uint64_t failedFrames = 0;     // trades that the sink would not take
    std::uint64_t damagedFrames = 0;    // frames with a damage of any kind
    std::uint64_t bytesPassedOver = 0;  // no trade was made of them, nor were they another frame
    // False: the file is none that was saved. Then how many frames were, and how many of them it still holds.
    bool asSaved = true;
    std::uint64_t savedFrames = 0;
    std::uint64_t savedFound = 0;
    std::vector<Dravel::DamagedFrame> listed;  // the first damaged frames, in the file's order

    bool Clean() const {
        return complete && asSaved && otherFrames + failedFrames + damagedFrames + bytesPassedOver == 0;
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

    // Set for a load that looks for the frames that are not as they were saved.
    std::optional<Dravel::SavedFrames> saved_;
    std::vector<Dravel::DamagedFrame> damaged_;  // all that the last load met
    bool writtenHere_ = false;  // the file is known to have been written here, before a load looks at it
    Dravel::ISecurityMaster* master_;

 private:
    std::size_t ReadStored(CTagMessageReader& frame);
    Dravel::StoredTradeEnd ReadOwnPart(const CTagMessageReader& frame, std::size_t length,
                                       TradeRecord& trade);
    bool IsHalf(const TradeRecord& trade, const Dravel::StoredTradeEnd& end);
    bool WrittenHere();
    void Note(Dravel::DamagedFrame frame, std::size_t foreign);
    void HandOn(const TradeRecord& trade, bool deleted);

    TradeSink sink_;
    TradeLoadReport report_;
    bool searched_ = false;  // for a frame that was written here
};

}  // namespace KRV::VELT

#include "records/TradeImpl.h"

#include <array>
#include <mutex>
#include <utility>
#include <vector>

#include "message/FieldBytes.h"

namespace KRV::VELT {

using namespace Dravel;

CKRVTradeImpl::CKRVTradeImpl(IFiles& files, IClock& clock, ILog& log, const Base::RecordFilePlace& place,
                             ISecurityMaster* master)
    : CKRVFileImpl(files, clock, log, place), master_(master) {}

TradeLoadReport CKRVTradeImpl::LoadInto(TradeSink sink) {
    const std::lock_guard guard(lock_);
    report_ = {};
    sink_ = std::move(sink);
    report_.complete = Load();
    sink_ = nullptr;
    return report_;
}

std::size_t CKRVTradeImpl::ReadFrame(CTagMessageReader& frame) {
    if (frame.MessageCode() != msg::StoredTrade) {
        ++report_.otherFrames;
        return ForeignBytes(frame);
    }
    TradeRecord trade{};
    const StoredTradeEnd end = ReadStoredTrade(frame, trade, master_);
    if (end.foreign > 0) {
        ReadOwnPart(frame, frame.Length() - end.foreign);
    } else {
        HandOn(trade, end.deleted);
    }
    return end.foreign;
}

// Reads the first `length` bytes of a plain frame that swallowed its neighbours. The bytes are still the
// file's, so a copy gets the right length. A trade is made of them only when its identifier is there, which
// stands near the end: half a trade would show, and report, a position that nobody holds.
void CKRVTradeImpl::ReadOwnPart(const CTagMessageReader& frame, std::size_t length) {
    ++report_.damagedFrames;
    const auto rest = frame.Unread();
    const std::uint8_t* bytes = rest.data() + rest.size() - frame.Length();
    std::vector<std::uint8_t> own(bytes, bytes + length);
    wire::Put(&own[wire::kLengthOffset], static_cast<std::uint16_t>(length - wire::kHeaderSize));
    CTagMessageReader reader(own.data(), static_cast<std::uint16_t>(length));
    TradeRecord trade{};
    StoredTradeEnd end;
    if (reader.Open().opened) end = ReadStoredTrade(reader, trade, master_);
    if (trade.veltTradeID == 0 || end.foreign > 0) return PassedOver(length);
    HandOn(trade, end.deleted);
}

void CKRVTradeImpl::HandOn(const TradeRecord& trade, bool deleted) {
    sink_(trade, deleted);
    ++report_.trades;
    report_.deleted += deleted;
}

bool CKRVTradeImpl::Append(const TradeRecord& trade, bool deleted) {
    std::array<std::uint8_t, kMaxTradeFrame> frame;
    const std::size_t length = BuildStoredTrade(trade, deleted, frame.data());
    const std::lock_guard guard(lock_);
    std::uint64_t end = 0;
    return stream_ && stream_->Size(end) && stream_->Seek(end) && stream_->Write(frame.data(), length);
}

}  // namespace KRV::VELT

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
        return 0;
    }
    TradeRecord trade{};
    StoredTradeEnd end = ReadStoredTrade(frame, trade, master_);
    if (end.foreign > 0) {
        trade = {};
        end.deleted = ReadOwnPart(frame, end.foreign, trade);
    }
    sink_(trade, end.deleted);
    ++report_.trades;
    report_.deleted += end.deleted;
    return end.foreign;
}

// Reads a plain frame without its last `foreign` bytes. The bytes are still the file's, so a copy gets the
// right length.
bool CKRVTradeImpl::ReadOwnPart(const CTagMessageReader& frame, std::size_t foreign, TradeRecord& trade) {
    const std::uint8_t* bytes = frame.Unread().data() - frame.Length();
    std::vector<std::uint8_t> own(bytes, bytes + frame.Length() - foreign);
    wire::Put(&own[wire::kLengthOffset], static_cast<std::uint16_t>(own.size() - wire::kHeaderSize));
    CTagMessageReader reader(own.data(), static_cast<std::uint16_t>(own.size()));
    return reader.Open().opened && ReadStoredTrade(reader, trade, master_).deleted;
}

bool CKRVTradeImpl::Append(const TradeRecord& trade, bool deleted) {
    std::array<std::uint8_t, kMaxTradeFrame> frame;
    const std::size_t length = BuildStoredTrade(trade, deleted, frame.data());
    const std::lock_guard guard(lock_);
    std::uint64_t end = 0;
    return stream_ && stream_->Size(end) && stream_->Seek(end) && stream_->Write(frame.data(), length);
}

}  // namespace KRV::VELT

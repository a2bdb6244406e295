#include "records/TradeImpl.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>
#include <vector>

#include "message/FieldBytes.h"
#include "records/StoredShape.h"

namespace KRV::VELT {

using namespace Dravel;

CKRVTradeImpl::CKRVTradeImpl(IFiles& files, IClock& clock, ILog& log, const Base::RecordFilePlace& place,
                             ISecurityMaster* master)
    : CKRVFileImpl(files, clock, log, place), master_(master) {}

TradeLoadReport CKRVTradeImpl::LoadInto(TradeSink sink) {
    const std::lock_guard guard(lock_);
    report_ = {};
    damaged_.clear();
    searched_ = false;
    sink_ = std::move(sink);
    report_.complete = Load();
    sink_ = nullptr;
    report_.damagedFrames = damaged_.size();
    const std::size_t listed = std::min(damaged_.size(), TradeLoadReport::kMostListed);
    report_.listed.assign(damaged_.begin(), damaged_.begin() + static_cast<std::ptrdiff_t>(listed));
    return report_;
}

std::size_t CKRVTradeImpl::ReadFrame(CTagMessageReader& frame) {
    if (frame.MessageCode() == msg::StoredTrade) return ReadStored(frame);
    const std::size_t foreign = ForeignBytes(frame, frame.Plain() ? place_.behind.size() : 0);
    ++report_.otherFrames;
    Note({place_.line, 0, foreign > 0 ? damage::Torn : damage::Kinds{}}, foreign);
    return foreign;
}

std::size_t CKRVTradeImpl::ReadStored(CTagMessageReader& frame) {
    TradeRecord trade{};
    StoredTradeEnd end = ReadStoredTrade(frame, trade, master_, frame.Plain() ? place_.behind.size() : 0);
    const std::size_t foreign = end.foreign;
    if (foreign > 0) {
        trade = {};
        end = ReadOwnPart(frame, frame.Length() - foreign, trade);
    }
    writtenHere_ |= end.identity;
    const bool half = foreign > 0 ? !HasIdentifier(trade) || end.foreign > 0 : IsHalf(trade, end);
    if (half) end.damage |= damage::Torn | damage::NotShown;
    Note({place_.line, HasIdentifier(trade) ? +trade.veltTradeID : 0, end.damage}, foreign);
    if (half) {
        PassedOver(place_.bytes.size() - foreign);
    } else {
        HandOn(trade, end.deleted);
    }
    return foreign;
}

// Reads the first `length` bytes of a plain frame that swallowed its neighbours. The bytes are still the
// file's, so a copy gets the right length. A trade is made of them only when its identifier is there, which
// stands near the end: half a trade would show, and report, a position that nobody holds.
StoredTradeEnd CKRVTradeImpl::ReadOwnPart(const CTagMessageReader& frame, std::size_t length,
                                          TradeRecord& trade) {
    const auto rest = frame.Unread();
    const std::uint8_t* bytes = rest.data() + rest.size() - frame.Length();
    std::vector<std::uint8_t> own(bytes, bytes + length);
    wire::Put(&own[wire::kLengthOffset], static_cast<std::uint16_t>(length - wire::kHeaderSize));
    CTagMessageReader reader(own.data(), static_cast<std::uint16_t>(length));
    StoredTradeEnd end;
    if (reader.Open().opened) end = ReadStoredTrade(reader, trade, master_);
    end.damage |= damage::Torn;
    return end;
}

// A frame without an identifier that is torn, or whose fields go on behind its end, in a file that was
// written here: what it lost may be the price. Another program's frames need no identifier.
bool CKRVTradeImpl::IsHalf(const TradeRecord& trade, const StoredTradeEnd& end) {
    if (!SalvagesDamage() || HasIdentifier(trade)) return false;
    return ((end.damage & damage::Torn) || BeginsStoredField(place_.behind)) && WrittenHere();
}

// Once a load at most the bytes behind are searched for a frame that tells.
bool CKRVTradeImpl::WrittenHere() {
    if (!writtenHere_ && !std::exchange(searched_, true)) writtenHere_ = HoldsIdentity(place_.behind);
    return writtenHere_;
}

// Only a file that salvages looks for damage; any other is read as it stands.
void CKRVTradeImpl::Note(DamagedFrame frame, std::size_t foreign) {
    if (!SalvagesDamage()) return;
    const auto own = place_.bytes.first(place_.bytes.size() - foreign);
    if (saved_ && !saved_->Find(Checksum(own.data(), own.size()))) frame.kinds |= damage::NotAsSaved;
    if (frame.kinds != 0) damaged_.push_back(frame);
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

#include "records/BookImage.h"

#include <algorithm>
#include <utility>

#include "records/TradeFrame.h"

namespace Dravel {

namespace {
constexpr std::size_t kFirstPiece = 65536, kLargestPiece = 4194304;
}

void BookImage::Append(const TradeRecord& trade, bool deleted) {
    PieceOfImage& piece = PieceWithRoom();
    const std::size_t length = BuildStoredTrade(trade, deleted, piece.bytes.get() + piece.used);
    piece.used += length;
    bytes_ += length;
    ++trades_;
}

BookImage::PieceOfImage& BookImage::PieceWithRoom() {
    if (!pieces_.empty() && pieces_.back().size - pieces_.back().used >= kMaxTradeFrame)
        return pieces_.back();
    const std::size_t size = pieces_.empty() ? kFirstPiece : std::min(pieces_.back().size * 4, kLargestPiece);
    pieces_.push_back({std::make_unique_for_overwrite<std::uint8_t[]>(size), 0, size});
    return pieces_.back();
}

}  // namespace Dravel

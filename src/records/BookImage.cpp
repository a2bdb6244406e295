#include "records/BookImage.h"

#include <mutex>
#include <utility>

#include "records/TradeFrame.h"

namespace Dravel {

ImageMemory::Piece ImageMemory::Take() {
    const std::lock_guard guard(lock_);
    if (kept_.empty()) return std::make_unique_for_overwrite<std::uint8_t[]>(kPieceSize);
    Piece piece = std::move(kept_.back());
    kept_.pop_back();
    return piece;
}

void ImageMemory::Give(Piece piece) noexcept {
    const std::lock_guard guard(lock_);
    if (kept_.size() < kMostKept) kept_.push_back(std::move(piece));
}

BookImage::~BookImage() {
    for (PieceOfImage& piece : pieces_)
        memory_->Give(std::move(piece.bytes));
}

void BookImage::Append(const TradeRecord& trade, bool deleted) {
    if (pieces_.empty() || ImageMemory::kPieceSize - pieces_.back().used < kMaxTradeFrame)
        pieces_.push_back({memory_->Take()});
    PieceOfImage& piece = pieces_.back();
    const std::size_t length = BuildStoredTrade(trade, deleted, piece.bytes.get() + piece.used);
    piece.used += length;
    bytes_ += length;
    ++trades_;
}

}  // namespace Dravel

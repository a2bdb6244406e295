// The frames of a whole book, ready to be written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "records/TradeRecord.h"

namespace Dravel {

// Built on the user-interface thread, written on the writer's: nothing of the book is touched while the disk
// works. About 650 bytes a trade, held in pieces of 4 MiB at most so that no growing copies what is there.
// May throw std::bad_alloc, which leaves it as it was.
class BookImage {
 public:
    // The trade goes behind the others; the first one is the top row of the loaded book.
    void Append(const TradeRecord& trade, bool deleted = false);

    std::uint64_t Bytes() const { return bytes_; }
    std::uint64_t Trades() const { return trades_; }
    std::size_t Pieces() const { return pieces_.size(); }
    std::span<const std::uint8_t> Piece(std::size_t index) const {
        return {pieces_[index].bytes.get(), pieces_[index].used};
    }

 private:
    struct PieceOfImage {
        std::unique_ptr<std::uint8_t[]> bytes;
        std::size_t used, size;
    };
    PieceOfImage& PieceWithRoom();

    std::vector<PieceOfImage> pieces_;
    std::uint64_t bytes_ = 0;
    std::uint64_t trades_ = 0;
};

}  // namespace Dravel

// The frames of a whole book, ready to be written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/Lock.h"
#include "records/TradeRecord.h"

namespace Dravel {

// The memory that images are built in, kept from one to the next: to be given a page by the system costs more
// than to fill it with trades. Any thread.
class ImageMemory {
 public:
    using Piece = std::unique_ptr<std::uint8_t[]>;
    static constexpr std::size_t kPieceSize = 1048576;
    static constexpr std::size_t kMostKept = 64;  // pieces: a book of 140,000 trades

    ImageMemory() { kept_.reserve(kMostKept); }
    Piece Take();  // may throw std::bad_alloc
    void Give(Piece piece) noexcept;

 private:
    KRV::Thread::CKRVLock lock_;
    std::vector<Piece> kept_;
};

// Built on the user-interface thread, written on the writer's: nothing of the book is touched while the disk
// works. About 450 bytes a trade, held in pieces so that no growing copies what is there. Append may throw
// std::bad_alloc, which leaves it as it was.
class BookImage {
 public:
    explicit BookImage(std::shared_ptr<ImageMemory> memory = std::make_shared<ImageMemory>())
        : memory_(std::move(memory)) {}
    ~BookImage();
    BookImage(BookImage&&) = default;
    BookImage& operator=(BookImage&&) = delete;

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
        ImageMemory::Piece bytes;
        std::size_t used = 0;
    };

    std::shared_ptr<ImageMemory> memory_;
    std::vector<PieceOfImage> pieces_;
    std::uint64_t bytes_ = 0;
    std::uint64_t trades_ = 0;
};

}  // namespace Dravel

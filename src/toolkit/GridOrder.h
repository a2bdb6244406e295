// The order in which a grid shows its rows, when that is another than the order in which they are kept.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "toolkit/GridSelection.h"

namespace Dravel {

// A sequence of entries of which some are hidden. An entry is a number of the owner's, each at most once,
// below kLastEntry; numbers of heads (which stand above the entries of their group) carry kHeadEntry and are
// counted on their own. An entry's row is its place among those that are shown.
//
// Kept in chunks of at most kChunk entries, with the number of rows before each chunk beside them: finding
// costs a binary search and a walk inside one chunk; a change costs moving part of one chunk and adding to
// one number a chunk, which for a million entries is 1 or 2 microseconds and less than a balanced tree's
// cache misses.
class GridOrder {
 public:
    using Entry = std::uint32_t;
    static constexpr Entry kHeadEntry = 0x80000000, kLastEntry = 0x3FFFFFFF, kNone = 0xFFFFFFFF;

    // A place between entries: before the one with this index in its chunk. Any change of the sequence makes
    // it worthless.
    struct Place {
        std::size_t chunk = 0;
        std::uint32_t index = 0;
    };
    enum class Sight : std::uint8_t { Hide, Show, Stop };

    void Clear();  // gives the memory back
    // In place of what was there; all hidden until the next Sweep.
    void Assign(const std::vector<Entry>& entries);

    std::uint32_t RowCount() const { return starts_.back(); }
    Entry At(std::uint32_t row) const;       // row below RowCount()
    std::uint32_t RowOf(Entry entry) const;  // kNoRow: hidden or not there
    bool Holds(Entry entry) const { return ChunkOf(entry) != kNone; }

    // The first place whose entry does not stand before what is looked for.
    Place LowerBound(const std::function<bool(Entry)>& before) const;
    Place PlaceOf(Entry entry) const;        // which must be there
    std::uint32_t RowAt(Place place) const;  // of the entry there when it is or were shown
    Entry EntryBefore(Place place) const;    // kNone: the front
    Entry EntryAfter(Entry entry) const;     // kNone: the back
    void Insert(Place place, Entry entry, bool shown);
    void Remove(Entry entry);
    void Show(Entry entry, bool shown);  // which must be there

    // Decides anew which entries show, from `from` on until it says Stop.
    template <class Decide>
    void Sweep(Place from, const Decide& decide);
    // Walks over the entries in order, hidden ones too.
    template <class Visit>
    void ForEach(const Visit& visit) const;
    // Walks over the entries that show.
    template <class Visit>
    void ForEachShown(const Visit& visit) const;

    std::size_t Bytes() const;

 private:
    static constexpr std::uint32_t kChunk = 512;
    static constexpr std::uint32_t kFill = 384;  // entries of a chunk when many are put in at once
    static constexpr Entry kHidden = 0x40000000;
    struct Chunk {
        std::uint32_t count = 0, shown = 0;
        Entry entries[kChunk];
    };

    const Chunk& In(std::size_t position) const { return *chunks_[sequence_[position]]; }
    Chunk& In(std::size_t position) { return *chunks_[sequence_[position]]; }
    std::uint32_t ChunkOf(Entry entry) const;  // its identifier; kNone: not there
    void SetChunkOf(Entry entry, std::uint32_t chunk);
    std::uint32_t IndexIn(const Chunk& chunk, Entry entry) const;
    std::uint32_t ShownBefore(const Chunk& chunk, std::uint32_t index) const;
    std::uint32_t NewChunk(std::size_t position);
    void DropChunk(std::size_t position);
    void Split(std::size_t position);
    void Renumber(std::size_t from);   // positions, from a chunk on
    void CountRows(std::size_t from);  // rows, from a chunk on
    void AddRows(std::size_t afterPosition, std::uint32_t rows);

    std::vector<std::unique_ptr<Chunk>> chunks_;  // by identifier
    std::vector<std::uint32_t> free_;             // identifiers
    std::vector<std::uint32_t> sequence_;         // identifiers in order
    std::vector<std::uint32_t> positionOf_;       // in sequence_, by identifier
    std::vector<std::uint32_t> starts_{0};        // rows before each chunk, one more for the end
    std::vector<std::uint32_t> chunkOf_[2];       // by entry: ordinary ones, heads
    std::uint32_t count_ = 0;
};

template <class Decide>
void GridOrder::Sweep(Place from, const Decide& decide) {
    std::uint32_t index = from.index;
    bool going = true;
    for (std::size_t position = from.chunk; going && position < sequence_.size(); ++position, index = 0) {
        Chunk& chunk = In(position);
        for (; index < chunk.count; ++index) {
            Entry& entry = chunk.entries[index];
            const Sight sight = decide(entry & ~kHidden);
            if (sight == Sight::Stop) {
                going = false;
                break;
            }
            const bool shown = sight == Sight::Show, was = (entry & kHidden) == 0;
            chunk.shown = chunk.shown + (shown ? 1u : 0u) - (was ? 1u : 0u);
            entry = (entry & ~kHidden) | (shown ? 0u : kHidden);
        }
    }
    CountRows(from.chunk);
}

template <class Visit>
void GridOrder::ForEach(const Visit& visit) const {
    for (std::size_t position = 0; position < sequence_.size(); ++position) {
        const Chunk& chunk = In(position);
        for (std::uint32_t index = 0; index < chunk.count; ++index)
            visit(chunk.entries[index] & ~kHidden);
    }
}

template <class Visit>
void GridOrder::ForEachShown(const Visit& visit) const {
    for (std::size_t position = 0; position < sequence_.size(); ++position) {
        const Chunk& chunk = In(position);
        for (std::uint32_t index = 0; index < chunk.count; ++index) {
            if ((chunk.entries[index] & kHidden) == 0) visit(chunk.entries[index]);
        }
    }
}

}  // namespace Dravel

#include "toolkit/GridOrder.h"

#include <algorithm>

namespace Dravel {

void GridOrder::Clear() {
    *this = GridOrder();
}

void GridOrder::Assign(const std::vector<Entry>& entries) {
    Clear();
    count_ = static_cast<std::uint32_t>(entries.size());
    Entry most[2] = {0, 0};
    for (const Entry entry : entries)
        most[entry >> 31] = std::max(most[entry >> 31], (entry & ~kHeadEntry) + 1);
    chunkOf_[0].assign(most[0], kNone);
    chunkOf_[1].assign(most[1], kNone);
    for (std::uint32_t begin = 0; begin < count_; begin += kFill) {
        const std::uint32_t id = NewChunk(sequence_.size());
        Chunk& chunk = *chunks_[id];
        chunk.count = std::min(kFill, count_ - begin);
        for (std::uint32_t i = 0; i < chunk.count; ++i) {
            chunk.entries[i] = entries[begin + i] | kHidden;
            chunkOf_[entries[begin + i] >> 31][entries[begin + i] & ~kHeadEntry] = id;
        }
    }
}

// Chunks

std::uint32_t GridOrder::NewChunk(std::size_t position) {
    std::uint32_t id = 0;
    if (free_.empty()) {
        id = static_cast<std::uint32_t>(chunks_.size());
        chunks_.push_back(std::make_unique_for_overwrite<Chunk>());
    } else {
        id = free_.back();
        free_.pop_back();
        chunks_[id] = std::make_unique_for_overwrite<Chunk>();
    }
    positionOf_.resize(chunks_.size());
    const auto at = static_cast<std::ptrdiff_t>(position);
    starts_.insert(starts_.begin() + at, starts_[position]);
    sequence_.insert(sequence_.begin() + at, id);
    Renumber(position);
    return id;
}

void GridOrder::DropChunk(std::size_t position) {
    const auto at = static_cast<std::ptrdiff_t>(position);
    chunks_[sequence_[position]].reset();
    free_.push_back(sequence_[position]);
    starts_.erase(starts_.begin() + at);
    sequence_.erase(sequence_.begin() + at);
    Renumber(position);
}

void GridOrder::Renumber(std::size_t from) {
    for (std::size_t position = from; position < sequence_.size(); ++position)
        positionOf_[sequence_[position]] = static_cast<std::uint32_t>(position);
}

void GridOrder::Split(std::size_t position) {
    const std::uint32_t id = NewChunk(position + 1);
    Chunk &left = In(position), &right = *chunks_[id];
    const std::uint32_t half = left.count / 2;
    right.count = left.count - half;
    std::copy(left.entries + half, left.entries + left.count, right.entries);
    left.count = half;
    left.shown = ShownBefore(left, half);
    right.shown = ShownBefore(right, right.count);
    starts_[position + 1] = starts_[position] + left.shown;
    for (std::uint32_t i = 0; i < right.count; ++i)
        SetChunkOf(right.entries[i] & ~kHidden, id);
}

void GridOrder::CountRows(std::size_t from) {
    for (std::size_t position = from; position < sequence_.size(); ++position)
        starts_[position + 1] = starts_[position] + In(position).shown;
}

// `rows` more in the chunk before; negative ones wrap round.
void GridOrder::AddRows(std::size_t afterPosition, std::uint32_t rows) {
    constexpr std::size_t kTogether =
        16;  // a loop of known length, which the compiler makes a few instructions
    std::uint32_t* const starts = starts_.data();
    std::size_t i = afterPosition + 1;
    for (; i + kTogether <= starts_.size(); i += kTogether) {
        for (std::size_t k = 0; k < kTogether; ++k)
            starts[i + k] += rows;
    }
    for (; i < starts_.size(); ++i)
        starts[i] += rows;
}

// Entries

std::uint32_t GridOrder::ChunkOf(Entry entry) const {
    const auto& chunkOf = chunkOf_[entry >> 31];
    const std::size_t number = entry & ~kHeadEntry;
    return number < chunkOf.size() ? chunkOf[number] : kNone;
}

void GridOrder::SetChunkOf(Entry entry, std::uint32_t chunk) {
    auto& chunkOf = chunkOf_[entry >> 31];
    const std::size_t number = entry & ~kHeadEntry;
    if (number >= chunkOf.size()) chunkOf.resize(number + 1, kNone);
    chunkOf[number] = chunk;
}

std::uint32_t GridOrder::IndexIn(const Chunk& chunk, Entry entry) const {
    const auto same = [entry](Entry other) { return (other & ~kHidden) == entry; };
    return static_cast<std::uint32_t>(std::find_if(chunk.entries, chunk.entries + chunk.count, same) -
                                      chunk.entries);
}

std::uint32_t GridOrder::ShownBefore(const Chunk& chunk, std::uint32_t index) const {
    std::uint32_t shown = 0;
    for (std::uint32_t i = 0; i < index; ++i)
        shown += (chunk.entries[i] & kHidden) == 0 ? 1u : 0u;
    return shown;
}

GridOrder::Entry GridOrder::At(std::uint32_t row) const {
    const auto after = std::upper_bound(starts_.begin(), starts_.end(), row);
    const auto position = static_cast<std::size_t>(after - starts_.begin()) - 1;
    const Chunk& chunk = In(position);
    std::uint32_t left = row - starts_[position];
    if (chunk.shown == chunk.count) return chunk.entries[left];
    const Entry* entry = chunk.entries;
    for (;; ++entry) {
        if ((*entry & kHidden) == 0 && left-- == 0) return *entry;
    }
}

std::uint32_t GridOrder::RowOf(Entry entry) const {
    const std::uint32_t id = ChunkOf(entry);
    if (id == kNone) return kNoRow;
    const Chunk& chunk = *chunks_[id];
    const std::uint32_t index = IndexIn(chunk, entry);
    if ((chunk.entries[index] & kHidden) != 0) return kNoRow;
    return RowAt({positionOf_[id], index});
}

std::uint32_t GridOrder::RowAt(Place place) const {
    if (place.chunk >= sequence_.size()) return RowCount();
    const Chunk& chunk = In(place.chunk);
    const bool all = chunk.shown == chunk.count;
    return starts_[place.chunk] + (all ? place.index : ShownBefore(chunk, place.index));
}

GridOrder::Place GridOrder::LowerBound(const std::function<bool(Entry)>& before) const {
    const auto chunk = std::partition_point(sequence_.begin(), sequence_.end(), [&](std::uint32_t id) {
        return before(chunks_[id]->entries[0] & ~kHidden);
    });
    if (chunk == sequence_.begin()) return {};
    const auto position = static_cast<std::size_t>(chunk - sequence_.begin()) - 1;
    const Entry* const entries = In(position).entries;
    const Entry* const found = std::partition_point(entries + 1, entries + In(position).count,
                                                    [&](Entry e) { return before(e & ~kHidden); });
    return {position, static_cast<std::uint32_t>(found - entries)};
}

GridOrder::Place GridOrder::PlaceOf(Entry entry) const {
    const std::uint32_t id = ChunkOf(entry);
    return {positionOf_[id], IndexIn(*chunks_[id], entry)};
}

GridOrder::Entry GridOrder::EntryBefore(Place place) const {
    if (place.index > 0) return In(place.chunk).entries[place.index - 1] & ~kHidden;
    if (place.chunk == 0) return kNone;
    const Chunk& chunk = In(place.chunk - 1);
    return chunk.entries[chunk.count - 1] & ~kHidden;
}

GridOrder::Entry GridOrder::EntryAfter(Entry entry) const {
    const Place place = PlaceOf(entry);
    const Chunk& chunk = In(place.chunk);
    if (place.index + 1 < chunk.count) return chunk.entries[place.index + 1] & ~kHidden;
    return place.chunk + 1 < sequence_.size() ? In(place.chunk + 1).entries[0] & ~kHidden : kNone;
}

void GridOrder::Insert(Place place, Entry entry, bool shown) {
    if (sequence_.empty()) NewChunk(0);
    if (In(place.chunk).count == kChunk) {
        Split(place.chunk);
        const std::uint32_t left = In(place.chunk).count;
        if (place.index > left) place = {place.chunk + 1, place.index - left};
    }
    Chunk& chunk = In(place.chunk);
    std::copy_backward(chunk.entries + place.index, chunk.entries + chunk.count,
                       chunk.entries + chunk.count + 1);
    chunk.entries[place.index] = entry | (shown ? 0u : kHidden);
    ++chunk.count;
    ++count_;
    SetChunkOf(entry, sequence_[place.chunk]);
    if (!shown) return;
    ++chunk.shown;
    AddRows(place.chunk, 1);
}

void GridOrder::Remove(Entry entry) {
    const Place place = PlaceOf(entry);
    Chunk& chunk = In(place.chunk);
    const bool shown = (chunk.entries[place.index] & kHidden) == 0;
    std::copy(chunk.entries + place.index + 1, chunk.entries + chunk.count, chunk.entries + place.index);
    --chunk.count;
    --count_;
    SetChunkOf(entry, kNone);
    if (shown) {
        --chunk.shown;
        AddRows(place.chunk, 0u - 1u);
    }
    if (chunk.count == 0) DropChunk(place.chunk);
}

void GridOrder::Show(Entry entry, bool shown) {
    const Place place = PlaceOf(entry);
    Chunk& chunk = In(place.chunk);
    Entry& kept = chunk.entries[place.index];
    if (((kept & kHidden) == 0) == shown) return;
    kept ^= kHidden;
    chunk.shown += shown ? 1u : 0u - 1u;
    AddRows(place.chunk, shown ? 1u : 0u - 1u);
}

std::size_t GridOrder::Bytes() const {
    const std::size_t words = sequence_.capacity() + positionOf_.capacity() + starts_.capacity() +
                              free_.capacity() + chunkOf_[0].capacity() + chunkOf_[1].capacity();
    return words * sizeof(std::uint32_t) + chunks_.size() * (sizeof(Chunk) + sizeof(void*));
}

}  // namespace Dravel

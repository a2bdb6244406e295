#include "tradebook/TradeTexts.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <numeric>

#include "tradebook/TradeColumns.h"

namespace Dravel {

namespace {

// More words than this are looked up slower than their texts are searched.
constexpr std::uint32_t kMaxWords = std::numeric_limits<std::uint16_t>::max() - 64;
constexpr std::uint32_t kFewWords = 4096;

// Where an expiry stands among all: 0 for an empty one, the largest number for what is no date.
std::uint32_t ExpiryOrder(std::string_view text) {
    constexpr std::string_view kMonths = "janfebmaraprmayjunjulaugsepoctnovdec";
    constexpr std::uint32_t kNoDate = std::numeric_limits<std::uint32_t>::max();
    if (text.empty()) return 0;
    if (text.size() != 9) return kNoDate;
    std::uint32_t date = 0;
    for (const std::size_t place : {5, 6, 7, 8, 0, 1}) {
        const char digit = text[place];
        if (digit < '0' || digit > '9') return kNoDate;
        if (place == 0) {
            const std::size_t month = kMonths.find(text.substr(2, 3));
            if (month == kMonths.npos || month % 3 != 0) return kNoDate;
            date = date * 100 + static_cast<std::uint32_t>(month / 3 + 1);
        }
        date = date * 10 + static_cast<std::uint32_t>(digit - '0');
    }
    return date + 1;
}

}  // namespace

TradeTexts::TradeTexts(const TradeBook& book, int column)
    : book_(book), column_(column), cells_(column), words_(cells_.Width()) {
    codes_.reserve(book.ItemCount() + book.ItemCount() / 8);
    Extend();
}

void TradeTexts::Extend() {
    constexpr TradeItem kAhead = 64;
    while (size_ < book_.ItemCount()) {
        const TradeItem end = std::min(size_ + kAhead, book_.ItemCount());
        for (TradeItem item = size_; item < end; ++item)
            cells_.Fetch(book_.Record(item));
        if (!packed_) codes_.resize(end);
        for (; size_ < end && !packed_; ++size_)
            codes_[size_] = static_cast<std::uint16_t>(words_.CodeOf(cells_.Read(book_.Record(size_))));
        for (; size_ < end; ++size_)
            pages_.Add(cells_.Read(book_.Record(size_)));
        if (!packed_ && TooManyWords()) Pack();
    }
}

void TradeTexts::Update(TradeItem item) {
    if (item >= size_) return Extend();
    const std::string_view text = cells_.Read(book_.Record(item));
    if (packed_) return pages_.Replace(item, text);
    codes_[item] = static_cast<std::uint16_t>(words_.CodeOf(text));
    if (TooManyWords()) Pack();
}

bool TradeTexts::TooManyWords() const {
    const std::uint32_t words = words_.Size();
    return words > kFewWords && (words >= kMaxWords || words > codes_.size() / 4);
}

void TradeTexts::Pack() {
    for (const std::uint16_t code : codes_)
        pages_.Add(words_[code]);
    packed_ = true;
    std::vector<std::uint16_t>().swap(codes_);
    words_ = WordCodes(cells_.Width());
}

void TradeTexts::KeepMatches(std::span<const std::string> needles, std::vector<std::uint8_t>& passes) const {
    if (packed_) {
        for (std::size_t page = 0; page < pages_.Pages(); ++page) {
            std::uint8_t marks[TextPages::kPage]{};
            for (const std::string& needle : needles)
                pages_.Mark(page, needle, marks);
            const std::size_t begin = page * TextPages::kPage;
            const std::size_t count = std::min(TextPages::kPage, size_ - begin);
            for (std::size_t i = 0; i < count; ++i)
                passes[begin + i] &= marks[i];
        }
        return;
    }
    std::vector<std::uint8_t> good(words_.Size());
    for (std::uint32_t code = 0; code < words_.Size(); ++code) {
        const std::string_view word = words_[code];
        good[code] = std::any_of(needles.begin(), needles.end(),
                                 [&](const std::string& needle) { return word.find(needle) != word.npos; });
    }
    for (std::size_t item = 0; item < size_; ++item)
        passes[item] &= good[codes_[item]];
}

int TradeTexts::CompareTexts(std::string_view a, std::string_view b) const {
    if (column_ == column::ExpiryDate) {
        const std::uint32_t dateA = ExpiryOrder(a), dateB = ExpiryOrder(b);
        if (dateA != dateB) return dateA < dateB ? -1 : 1;
    }
    return a.compare(b);
}

int TradeTexts::Compare(TradeItem a, TradeItem b) const {
    if (!packed_ && codes_[a] == codes_[b]) return 0;
    return CompareTexts(Text(a), Text(b));
}

OrderKeys TradeTexts::Keys() const {
    if (packed_ && column_ != column::ExpiryDate) return pages_.Keys();
    OrderKeys made{std::vector<std::uint64_t>(size_), 32, false};
    if (packed_) {
        for (std::size_t item = 0; item < size_; ++item)
            made.keys[item] = ExpiryOrder(pages_[item]);
        return made;
    }
    std::vector<std::uint32_t> order(words_.Size()), rank(words_.Size());
    std::iota(order.begin(), order.end(), 0u);
    std::sort(order.begin(), order.end(),
              [this](std::uint32_t a, std::uint32_t b) { return CompareTexts(words_[a], words_[b]) < 0; });
    for (std::uint32_t place = 0; place < order.size(); ++place)
        rank[order[place]] = place;
    for (std::size_t item = 0; item < size_; ++item)
        made.keys[item] = rank[codes_[item]];
    made.bits = std::bit_width(words_.Size());
    made.whole = true;
    return made;
}

std::size_t TradeTexts::Bytes() const {
    return codes_.capacity() * sizeof(std::uint16_t) + words_.Bytes() + pages_.Bytes();
}

}  // namespace Dravel

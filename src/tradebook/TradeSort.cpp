#include "tradebook/TradeSort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

#include "tradebook/TradeColumns.h"
#include "tradebook/TradeFilter.h"

namespace Dravel {

namespace {

constexpr std::uint64_t kSign = std::uint64_t{1} << 63;

std::uint64_t KeyOfDouble(double value) {
    if (std::isnan(value)) return ~std::uint64_t{0};
    const auto bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
    return (bits & kSign) != 0 ? ~bits : bits | kSign;
}
double DoubleOfKey(std::uint64_t key) {
    return std::bit_cast<double>((key & kSign) != 0 ? key ^ kSign : ~key);
}

// Prices and strikes are decimals: as whole hundredths or ten-thousandths they fit half the bits, and sort in
// half the time. False when one of the values is none, or they lie too far apart.
bool AsDecimals(const std::vector<std::uint64_t>& keys, double scale, std::vector<std::uint64_t>& decimals) {
    constexpr double kLimit = 1e15;
    std::int64_t least = std::numeric_limits<std::int64_t>::max(), most = -least;
    decimals.resize(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const double value = DoubleOfKey(keys[i]), scaled = value * scale;
        if (!(scaled > -kLimit && scaled < kLimit)) return false;
        const auto whole = static_cast<std::int64_t>(scaled < 0 ? scaled - 0.5 : scaled + 0.5);
        if (static_cast<double>(whole) / scale != value) return false;
        least = std::min(least, whole);
        most = std::max(most, whole);
        decimals[i] = static_cast<std::uint64_t>(whole);
    }
    if (keys.empty() || most - least > std::numeric_limits<std::uint32_t>::max()) return false;
    for (std::uint64_t& decimal : decimals)
        decimal -= static_cast<std::uint64_t>(least);
    return true;
}

}  // namespace

std::uint64_t NumberKey(const TradeRecord& record, int column) {
    if (column == column::Price) return KeyOfDouble(record.price);
    if (column != column::StrikePrice) return CellInteger(record, column);
    return KeyOfDouble(record.security != nullptr ? record.security->strikePrice : record.strikePrice);
}

void TradeNumbers::Extend() {
    keys_.reserve(book_.ItemCount() > keys_.capacity() ? book_.ItemCount() + book_.ItemCount() / 8 : 0);
    for (auto item = static_cast<TradeItem>(keys_.size()); item < book_.ItemCount(); ++item)
        keys_.push_back(NumberKey(book_.Record(item), column_));
}

void TradeNumbers::Update(TradeItem item) {
    if (item >= keys_.size()) return Extend();
    keys_[item] = NumberKey(book_.Record(item), column_);
}

OrderKeys TradeNumbers::Keys() const {
    if (kTradeColumns[static_cast<std::size_t>(column_)].type == CellType::Integer) return {keys_, 32, true};
    OrderKeys made{{}, 32, true};
    if (AsDecimals(keys_, 100, made.keys) || AsDecimals(keys_, 10000, made.keys)) return made;
    return {keys_, 64, true};
}

namespace {

// What a sort moves about: the wide form for keys of up to 64 bits, the narrow one, half as large, for 32.
struct Wide {
    std::uint64_t key;
    TradeItem item;

    static Wide Of(std::uint64_t key, TradeItem item) { return {key, item}; }
    std::uint64_t Key() const { return key; }
    TradeItem Item() const { return item; }
};
struct Narrow {
    std::uint64_t both;

    static Narrow Of(std::uint64_t key, TradeItem item) { return {key << 32 | item}; }
    std::uint64_t Key() const { return both >> 32; }
    TradeItem Item() const { return static_cast<TradeItem>(both); }
};

constexpr int kDigitBits = 11;
constexpr std::size_t kDigits = std::size_t{1} << kDigitBits;

// One stable pass over the digit that begins at bit `shift`.
template <class Element>
void SortByDigit(const std::vector<Element>& from, std::vector<Element>& to, int shift) {
    std::array<std::uint32_t, kDigits> places{};
    for (const Element& element : from)
        ++places[element.Key() >> shift & (kDigits - 1)];
    std::uint32_t before = 0;
    for (std::uint32_t& place : places)
        before += std::exchange(place, before);
    for (const Element& element : from)
        to[places[element.Key() >> shift & (kDigits - 1)]++] = element;
}

template <class Element>
void SortByKeys(std::vector<Element>& elements) {
    std::uint64_t differing = 0;
    bool sorted = true;
    for (std::size_t i = 1; i < elements.size(); ++i) {
        differing |= elements[i].Key() ^ elements[i - 1].Key();
        sorted = sorted && elements[i - 1].Key() <= elements[i].Key();
    }
    if (sorted) return;
    std::vector<Element> other(elements.size());
    for (int shift = std::countr_zero(differing); shift < 64 && differing >> shift != 0;) {
        SortByDigit(elements, other, shift);
        elements.swap(other);
        shift += kDigitBits;
        if (shift < 64 && differing >> shift != 0) shift += std::countr_zero(differing >> shift);
    }
}

template <class Element>
void Sort(std::vector<TradeItem>& items, const OrderKeys& keys, std::uint64_t flip,
          const std::function<int(TradeItem, TradeItem)>& compare) {
    std::vector<Element> elements(items.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        elements[i] = Element::Of(keys.keys[items[i]] ^ flip, items[i]);
    SortByKeys(elements);
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i] = elements[i].Item();
    if (keys.whole) return;
    const auto before = [&](TradeItem a, TradeItem b) {
        const int order = compare(a, b);
        return flip == 0 ? order < 0 : order > 0;
    };
    for (std::size_t begin = 0, end = 0; begin < items.size(); begin = end) {
        for (end = begin + 1; end < items.size() && elements[end].Key() == elements[begin].Key();)
            ++end;
        if (end - begin > 1) {
            std::stable_sort(items.begin() + static_cast<std::ptrdiff_t>(begin),
                             items.begin() + static_cast<std::ptrdiff_t>(end), before);
        }
    }
}

}  // namespace

void StableSort(std::vector<TradeItem>& items, const OrderKeys& keys, bool ascending,
                const std::function<int(TradeItem, TradeItem)>& compare) {
    const std::uint64_t all = keys.bits < 64 ? (std::uint64_t{1} << keys.bits) - 1 : ~std::uint64_t{0};
    const std::uint64_t flip = ascending ? 0 : all;
    if (keys.bits <= 32) {
        Sort<Narrow>(items, keys, flip, compare);
    } else {
        Sort<Wide>(items, keys, flip, compare);
    }
}

}  // namespace Dravel

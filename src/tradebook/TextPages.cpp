#include "tradebook/TextPages.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace Dravel {

void TextPages::Page::Add(std::string_view text) {
    text = text.substr(0, kLongest);
    const std::size_t begin = End(), end = begin + text.size();
    if (end + 1 + kPadding > bytes.size()) bytes.resize(end + 1 + kPadding + bytes.size() / 2);
    if (!text.empty()) std::memcpy(bytes.data() + begin, text.data(), text.size());
    ends.push_back(static_cast<std::uint16_t>(end));
}

// No more texts come.
void TextPages::Page::Close() {
    bytes.resize(End() + kPadding);
    if (bytes.capacity() - bytes.size() > bytes.size() / 8) bytes.shrink_to_fit();
}

void TextPages::Add(std::string_view text) {
    if (size_ % kPage == 0) {
        if (!pages_.empty()) pages_.back().Close();
        // Most pages are as long as the one before.
        const std::size_t like = pages_.empty() ? 0 : pages_.back().bytes.size() + kPadding;
        pages_.emplace_back().ends.reserve(kPage);
        pages_.back().bytes.resize(like);
    }
    pages_.back().Add(text);
    ++size_;
}

void TextPages::Replace(std::size_t number, std::string_view text) {
    Page& page = pages_[number / kPage];
    Page made;
    made.bytes.resize(page.bytes.size() + kLongest);
    made.ends.reserve(kPage);
    for (std::size_t i = 0; i < page.ends.size(); ++i)
        made.Add(i == number % kPage ? text : page.Text(i));
    if (made.ends.size() == kPage) made.Close();
    page = std::move(made);
}

std::string_view TextPages::operator[](std::size_t number) const {
    return pages_[number / kPage].Text(number % kPage);
}

namespace {

// Where the first and the last byte of a needle stand as far apart as they must, a 1 each. The loop has a
// fixed length and no way out, so that the compiler does many places with one instruction.
template <std::size_t Strip>
void MayBeAt(const char* at, std::size_t span, char first, char last, std::uint8_t (&places)[Strip]) {
    for (std::size_t i = 0; i < Strip; ++i)
        places[i] = static_cast<std::uint8_t>((at[i] == first) & (at[i + span] == last));
}

// The first place of a strip at which the needle stands, Strip: none.
template <std::size_t Strip>
std::size_t FindIn(const char* at, std::string_view needle) {
    std::uint8_t places[Strip];
    MayBeAt(at, needle.size() - 1, needle.front(), needle.back(), places);
    for (std::size_t eight = 0; eight < Strip; eight += 8) {
        std::uint64_t left = 0;
        std::memcpy(&left, places + eight, 8);
        for (; left != 0; left &= left - 1) {
            const std::size_t i = eight + static_cast<std::size_t>(std::countr_zero(left)) / 8;
            if (needle.size() <= 2 || std::memcmp(at + i, needle.data(), needle.size()) == 0) return i;
        }
    }
    return Strip;
}

}  // namespace

void TextPages::Mark(std::size_t number, std::string_view needle, std::uint8_t* marks) const {
    if (needle.size() > kLongest || needle.find('\0') != needle.npos) return;
    const Page& page = pages_[number];
    const std::size_t end = page.End();
    std::size_t text = 0;
    for (std::size_t at = 0; at < end;) {
        const std::size_t found = FindIn<kStrip>(page.bytes.data() + at, needle);
        if (found == kStrip) {
            at += kStrip;
            continue;
        }
        while (page.ends[text] < at + found)
            ++text;
        marks[text] = 1;
        at = page.ends[text] + std::size_t{1};  // once in a text is enough
    }
}

OrderKeys TextPages::Keys() const {
    // Which bytes stand at each place of a text; zero stands for its end.
    std::array<std::array<std::uint8_t, 256>, kLongest> at{};
    std::size_t shortest = kLongest;
    for (const Page& page : pages_) {
        for (std::size_t i = 0; i < page.ends.size(); ++i) {
            const std::string_view text = page.Text(i);
            shortest = std::min(shortest, text.size());
            for (std::size_t place = 0; place < text.size(); ++place)
                at[place][static_cast<std::uint8_t>(text[place])] = 1;
        }
    }
    struct Digit {
        std::size_t place;
        int bits;
    };
    std::vector<Digit> digits;
    OrderKeys made{{}, 0, true};
    for (std::size_t place = 0; place < kLongest; ++place) {
        at[place][0] = place >= shortest;
        std::uint8_t different = 0;
        for (std::uint8_t& byte : at[place])
            byte = byte != 0 ? different++ : std::uint8_t{0};
        if (different < 2) continue;
        const int bits = std::bit_width(different - 1u);
        made.whole = made.bits + bits <= 64;
        if (!made.whole) break;
        made.bits += bits;
        digits.push_back({place, bits});
    }
    made.keys.reserve(size_);
    for (const Page& page : pages_) {
        for (std::size_t i = 0; i < page.ends.size(); ++i) {
            const std::string_view text = page.Text(i);
            std::uint64_t key = 0;
            for (const Digit& digit : digits) {
                const auto byte =
                    static_cast<std::uint8_t>(digit.place < text.size() ? text[digit.place] : 0);
                key = key << digit.bits | at[digit.place][byte];
            }
            made.keys.push_back(key);
        }
    }
    return made;
}

std::size_t TextPages::Bytes() const {
    std::size_t bytes = pages_.capacity() * sizeof(Page);
    for (const Page& page : pages_)
        bytes += page.bytes.capacity() + page.ends.capacity() * sizeof(std::uint16_t);
    return bytes;
}

}  // namespace Dravel

// Selection ranges against the plainest model there is: one flag a row.
#include "toolkit/GridSelection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

using namespace Dravel;

namespace {

class Naive {
 public:
    std::vector<bool> rows = std::vector<bool>(40);

    void Put(GridRange range, bool value) {
        for (std::uint32_t row = range.first; row <= range.last; ++row)
            rows[row] = value;
    }
    std::vector<GridRange> Ranges() const {
        std::vector<GridRange> ranges;
        for (std::uint32_t row = 0; row < rows.size(); ++row) {
            if (!rows[row]) continue;
            if (row > 0 && rows[row - 1]) {
                ranges.back().last = row;
            } else {
                ranges.push_back({row, row});
            }
        }
        return ranges;
    }
};

class Pair {
 public:
    explicit Pair(unsigned seed) : random_(seed) {}

    void Step() {
        const auto size = static_cast<std::uint32_t>(naive.rows.size());
        const GridRange range = Range(size);
        switch (Number(7)) {
            case 0:
                naive.Put(range, true), real.Add(range);
                break;
            case 1:
                naive.Put(range, false), real.Remove(range);
                break;
            case 2:
                naive.rows[range.first].flip(), real.Toggle(range.first);
                break;
            case 3:
                Insert(range.first, Number(4));
                break;
            case 4:
                Remove(range);
                break;
            case 5:
                Swap(range.first, range.last);
                break;
            default:
                Reorder(size);
                break;
        }
    }

    Naive naive;
    GridSelection real;

 private:
    std::uint32_t Number(std::uint32_t below) {
        return std::uniform_int_distribution<std::uint32_t>(0, below - 1)(random_);
    }
    GridRange Range(std::uint32_t size) {
        const std::uint32_t a = Number(size), b = std::min(a + Number(6), size - 1);
        return {a, b};
    }
    void Insert(std::uint32_t at, std::uint32_t count) {
        naive.rows.insert(naive.rows.begin() + at, count, false);
        // Rows that come between two selected ones part the range.
        real.RowsInserted(at, count);
    }
    void Remove(GridRange range) {
        if (naive.rows.size() < 12) return;
        naive.rows.erase(naive.rows.begin() + range.first, naive.rows.begin() + range.last + 1);
        real.RowsRemoved(range.first, range.Count());
    }
    void Swap(std::uint32_t a, std::uint32_t b) {
        const bool kept = naive.rows[a];
        naive.rows[a] = naive.rows[b];
        naive.rows[b] = kept;
        real.RowsSwapped(a, b);
    }
    void Reorder(std::uint32_t size) {
        std::vector<std::uint32_t> place(size);
        std::iota(place.begin(), place.end(), 0u);
        std::shuffle(place.begin(), place.end(), random_);
        if (Number(2) == 0) place[Number(size)] = kNoRow;
        std::vector<bool> moved(size);
        for (std::uint32_t row = 0; row < size; ++row) {
            if (place[row] != kNoRow) moved[place[row]] = naive.rows[row];
        }
        naive.rows = moved;
        real.RowsReordered([&](std::uint32_t row) { return place[row]; });
    }

    std::mt19937 random_;
};

}  // namespace

TEST(GridSelection, DoesWhatOneFlagARowWouldDo) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        Pair pair(seed);
        for (int step = 0; step < 60; ++step) {
            pair.Step();
            ASSERT_EQ(pair.real.Ranges(), pair.naive.Ranges()) << "seed " << seed << " step " << step;
            for (std::uint32_t row = 0; row < pair.naive.rows.size(); ++row) {
                ASSERT_EQ(pair.real.Contains(row), pair.naive.rows[row]) << "seed " << seed << " row " << row;
            }
        }
    }
}

TEST(GridSelection, AMillionRowsAreOneRange) {
    GridSelection selection;
    selection.Set({0, 999999});
    selection.RowsInserted(0, 5);
    EXPECT_EQ(selection.Ranges(), (std::vector<GridRange>{{5, 1000004}}));
    EXPECT_EQ(selection.RowCount(), 1000000u);
    selection.Add({0, kNoRow - 1});
    EXPECT_EQ(selection.Ranges().size(), 1u);
}

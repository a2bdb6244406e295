// How a frame's room is shared, what saved places are worth, and the bytes of a dialog template.
#include "toolkit/DockState.h"

#include <gtest/gtest.h>

#include "toolkit/DialogTemplate.h"

using namespace Dravel;

namespace {

constexpr Rect kRoom{10, 20, 1010, 720};

}  // namespace

TEST(DockState, BarAndContentShareTheRoomWithoutGapOrOverlap) {
    for (int side = 1; side <= 4; ++side) {
        for (const int size : {-5, 0, 30, 300, 699, 5000}) {
            for (const Rect& room : {kRoom, Rect{0, 0, 90, 40}, Rect{0, 0, 0, 0}, Rect{0, 0, 1, 1}}) {
                const DockSplit split = SplitRoom(room, {static_cast<DockSide>(side), 0, 0, size, size}, 96);
                const auto area = [](const Rect& rect) { return rect.Width() * rect.Height(); };
                EXPECT_GE(split.bar.Width(), 0);
                EXPECT_GE(split.rest.Width(), 0);
                EXPECT_GE(split.bar.Height(), 0);
                EXPECT_GE(split.rest.Height(), 0);
                EXPECT_EQ(area(split.bar) + area(split.rest), area(room)) << side << " " << size;
            }
        }
    }
}

TEST(DockState, ASideTakesItsExtentWithinBounds) {
    EXPECT_EQ(SplitRoom(kRoom, {DockSide::Bottom, 0, 0, 500, 300}, 96).bar, (Rect{10, 420, 1010, 720}));
    EXPECT_EQ(SplitRoom(kRoom, {DockSide::Left, 0, 0, 500, 300}, 96).bar, (Rect{10, 20, 510, 720}));
    EXPECT_EQ(SplitRoom(kRoom, {DockSide::Right, 0, 0, 5000, 300}, 96).rest, (Rect{10, 20, 70, 720}));
    EXPECT_EQ(SplitRoom(kRoom, {DockSide::Top, 0, 0, 500, 3}, 144).bar.Height(), 90);
    EXPECT_EQ(SplitRoom(kRoom, {DockSide::Floating, 0, 0, 500, 300}, 96).rest, kRoom);
}

TEST(DockState, SplitterAndDropFollowThePointer) {
    DockState state{DockSide::Right, 5, 6, 500, 300};
    DragSplitter(state, kRoom, 700, 0);
    EXPECT_EQ(state, (DockState{DockSide::Right, 5, 6, 310, 300}));
    DragSplitter(state, kRoom, 2000, 0);
    EXPECT_EQ(state.width, kMinDockExtent);
    EXPECT_EQ(DropSide(kRoom, 15, 400, 24), DockSide::Left);
    EXPECT_EQ(DropSide(kRoom, 500, 730, 24), DockSide::Bottom);
    EXPECT_EQ(DropSide(kRoom, 500, 400, 24), DockSide::Floating);
    EXPECT_EQ(DropSide(kRoom, 500, 780, 24), DockSide::Floating);
}

TEST(DockState, SavedNonsenseIsMadeUsable) {
    const DockState usual{DockSide::Bottom, 100, 100, 500, 300};
    const Rect screen{0, 0, 1280, 800};
    EXPECT_EQ(SaneDockState({static_cast<DockSide>(9), -4000, 90000, 0, 2000000000}, usual, screen),
              (DockState{DockSide::Floating, 0, 740, 500, 300}));
    const DockState good{DockSide::Top, 20, 30, 400, 200};
    EXPECT_EQ(SaneDockState(good, usual, screen), good);
}

TEST(DialogTemplate, ItemsAreCountedAndAlignedWhateverTheTextsAre) {
    for (const wchar_t* title : {L"", L"Import", L"Imports"}) {
        DialogTemplate shape(title, 200, 100);
        for (const wchar_t* text : {L"&Path:", L"a", L""})
            shape.Add({DialogControl::Edit, text, 1001, 1, 2, 3, 4});
        const auto* words = static_cast<const std::uint16_t*>(shape.Data());
        EXPECT_EQ(words[0], 1);
        EXPECT_EQ(words[1], 0xFFFF);
        EXPECT_EQ(words[8], 3);  // items
        // Every item begins at a multiple of four: find each by its place and identifier.
        int found = 0;
        for (std::size_t at = 0; at + 9 < shape.Size() / 2; at += 2) {
            const std::uint16_t* item = words + at;
            found += item[6] == 1 && item[7] == 2 && item[8] == 3 && item[9] == 4 && item[10] == 1001 &&
                     item[11] == 0 && item[12] == 0xFFFF && item[13] == 0x81;
        }
        EXPECT_EQ(found, 3);
    }
}

#include "Unfriendly.h"

#include <commctrl.h>

#include <algorithm>
#include <cfenv>
#include <stdexcept>
#include <utility>

namespace Dravel::DevHost {
namespace {

constexpr std::size_t kLongText = 1000;

std::int64_t Now() {
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return now.QuadPart;
}

}  // namespace

bool MasterMood::Set(std::string_view name) {
    constexpr std::pair<std::string_view, void (MasterMood::*)(MasterAnswer&)> kMoods[] = {
        {"normal", nullptr},
        {"nothing", &MasterMood::GiveNothing},
        {"no-list", &MasterMood::CountOnly},
        {"long", &MasterMood::Lengthen},
        {"nulls", &MasterMood::LeaveOut},
    };
    for (const auto& [mood, spoil] : kMoods) {
        if (mood != name) continue;
        spoil_ = spoil;
        return true;
    }
    return false;
}

void MasterMood::Arrive() {
    if (delay_ != 0) Sleep(delay_);
    if (next_) std::exchange(next_, nullptr)();
}

void MasterMood::Spoil(MasterAnswer& answer) {
    if (spoil_) (this->*spoil_)(answer);
}

void MasterMood::GiveNothing(MasterAnswer& answer) {
    answer = {};
}

void MasterMood::CountOnly(MasterAnswer& answer) {
    answer.list = nullptr;
    answer.entry = nullptr;
}

void MasterMood::Lengthen(MasterAnswer& answer) {
    texts_.clear();
    list_.clear();
    for (std::uint32_t i = 0; answer.list && i < answer.count; ++i) {
        texts_.emplace_back(answer.list[i]);
        texts_.back().resize(std::max(texts_.back().size(), kLongText), 'x');
    }
    for (const std::string& text : texts_)
        list_.push_back(text.c_str());
    if (answer.list) answer.list = list_.data();
}

void MasterMood::LeaveOut(MasterAnswer& answer) {
    list_.clear();
    for (std::uint32_t i = 0; answer.list && i < answer.count; ++i)
        list_.push_back(i % 2 == 0 ? nullptr : answer.list[i]);
    if (answer.list) answer.list = list_.data();
}

bool CallbackMood::Set(std::string_view mood, std::string_view name) {
    constexpr std::pair<std::string_view, void (*)()> kMoods[] = {
        {"work", nullptr},
        {"throw", [] { throw std::runtime_error("a callback of the terminal"); }},
        {"fault", [] { *reinterpret_cast<volatile int*>(std::uintptr_t{64}) = 1; }},
        {"round-up", [] { std::fesetround(FE_UPWARD); }},
    };
    for (const auto& [known, end] : kMoods) {
        if (known != mood) continue;
        name_ = name;
        end_ = end;
        std::fesetround(mood == "round-up" ? FE_UPWARD : FE_TONEAREST);
        return true;
    }
    return false;
}

void CallbackMood::Leave(std::string_view name) const {
    if (end_ && (name_.empty() || name_ == name)) end_();
}

void PaintWatch::Start(HWND window) {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    *this = {};
    frequency_ = frequency.QuadPart;
    window_ = window;
    last_ = Now();
    SetWindowSubclass(window, Procedure, 1, reinterpret_cast<DWORD_PTR>(this));
}

void PaintWatch::Stop() {
    RemoveWindowSubclass(std::exchange(window_, nullptr), Procedure, 1);
}

void PaintWatch::Painted() {
    const std::int64_t now = Now();
    longest_ = std::max(longest_, now - last_);
    last_ = now;
    ++paints_;
}

LRESULT CALLBACK PaintWatch::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                       DWORD_PTR watch) {
    const LRESULT result = DefSubclassProc(window, message, wParam, lParam);
    if (message == WM_PAINT) reinterpret_cast<PaintWatch*>(watch)->Painted();
    return result;
}

}  // namespace Dravel::DevHost

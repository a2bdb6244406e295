#include "plugin/MessageBoxStyle.h"

#include <cstddef>

namespace Dravel {

namespace {

// By number of the button set: OK; Yes, No; OK, Cancel; Retry, Cancel; Abort, Retry, Ignore; Cancel, Try
// again, Continue; Yes, No, Cancel; two of the plug-in's own.
constexpr std::uint32_t kButtonStyles[] = {0, 4, 1, 5, 2, 6, 3, 256};
// By number of the icon: error, warning, question, information, user, none, mask.
constexpr std::uint32_t kIconStyles[] = {16, 48, 32, 64, 128, 0, 112};
constexpr std::uint32_t kRightAligned = 0x80000;

template <std::size_t Count>
std::uint32_t At(const std::uint32_t (&styles)[Count], std::uint32_t number) {
    return number < Count ? styles[number] : 0;
}

}  // namespace

std::uint32_t MessageBoxStyle(std::uint32_t buttons, std::uint32_t icon, std::uint32_t extra,
                              bool rightAligned) {
    return At(kButtonStyles, buttons) + (rightAligned ? kRightAligned : 0) + At(kIconStyles, icon) + extra;
}

}  // namespace Dravel

// Functions of another program: what they throw, and the state that they leave behind.
#include "platform/ForeignCall.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <stdexcept>

namespace Dravel {
namespace {

TEST(ForeignCalls, WhatTheyThrowAndLeaveEndsWithThem) {
    int reached = 0;
    EXPECT_TRUE(CallForeign([&] { ++reached; }).returned);
    EXPECT_FALSE(CallForeign([&] { throw std::runtime_error("theirs"); }).returned);
    EXPECT_FALSE(CallForeign([&] { throw 7; }).returned);
    EXPECT_FALSE(CallForeign([&] {
                     ++reached;
                     EXPECT_FALSE(CallForeign([] { throw 8; }).returned) << "they nest";
                     throw 9;
                 }).returned);
    EXPECT_TRUE(CallForeign([] { std::fesetround(FE_UPWARD); }).returned);
    EXPECT_EQ(std::fegetround(), FE_TONEAREST);
    EXPECT_EQ(reached, 2);
}

}  // namespace
}  // namespace Dravel

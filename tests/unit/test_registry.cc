#include <gtest/gtest.h>
#include <tide/tide.h>
TEST(Registry, Placeholder) { EXPECT_STREQ(shr_errmsg(-1000), "Unknown error"); }

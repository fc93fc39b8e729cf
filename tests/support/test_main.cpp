#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    // Death tests re-run the test program, so code in them starts from a fresh process state.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

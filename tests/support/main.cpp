#include <gtest/gtest.h>

#include "tests/support/child_process.h"

int main(int argc, char **argv) {
    int exitCode = 0;
    if (zck::test::RunChildRole(argc, argv, &exitCode)) return exitCode;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

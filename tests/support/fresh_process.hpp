#pragma once

#include <cstdio>
#include <unistd.h>

// For checks inside EXPECT_EXIT bodies, which run in a fresh copy of the test program:
// a failed check names itself on stderr and ends the child with status 1.
#define CHILD_CHECK(condition)                                                                   \
    do {                                                                                         \
        if (!(condition)) {                                                                      \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition);  \
            std::fflush(stderr);                                                                 \
            _exit(1);                                                                            \
        }                                                                                        \
    } while (false)

#define EXPECT_IN_FRESH_PROCESS(body)                                                            \
    EXPECT_EXIT(                                                                                 \
        {                                                                                        \
            body;                                                                                \
            std::fflush(stdout);                                                                 \
            _exit(0);                                                                            \
        },                                                                                       \
        ::testing::ExitedWithCode(0), "")

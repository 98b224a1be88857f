// Programming errors in the parser library print their place on standard output and abort.
#ifndef TESTS_SUPPORT_ABORTS_H
#define TESTS_SUPPORT_ABORTS_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

// The statement, in a child process, prints "module:LINE:assertion failed." alone and aborts.
#define EXPECT_ASSERTION(statement, module)     \
    EXPECT_EXIT(                                \
        {                                       \
            dup2(STDERR_FILENO, STDOUT_FILENO); \
            statement;                          \
        },                                      \
        testing::KilledBySignal(SIGABRT), "^" module ":[0-9]+:assertion failed\\.\n$")

#endif

#pragma once

#include <QtTest>

/// A world of its own for a test of paths and settings: the program runs again as a copy in a
/// temporary folder, so that its application directory, its settings and its home are nobody
/// else's. The exit code is that of the copy, which alone calls @p test.
int runInSandbox(int (*test)(int argc, char **argv), int argc, char **argv);

template <typename Test>
int runTest(int argc, char **argv)
{
    Test test;
    return QTest::qExec(&test, argc, argv);
}

/// In the place of QTEST_GUILESS_MAIN.
#define RIVET_SANDBOXED_TEST_MAIN(Test)                                                            \
    int main(int argc, char **argv)                                                                \
    {                                                                                              \
        return runInSandbox(&runTest<Test>, argc, argv);                                           \
    }

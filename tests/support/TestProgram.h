#pragma once

#include <QtTest>

/// A class of tests in a program that holds several. The program's first argument names the class that it runs.
class TestClass {
public:
    using Run = int (*)(int argc, char** argv);
    TestClass(const char* name, Run run);
};

/// Adds a class of tests to its program. Stands at the end of the class's file, in place of QTEST_MAIN().
#define ORVO_TEST_CLASS(Class)                                           \
    static const TestClass testClass(#Class, [](int argc, char** argv) { \
        Class tests;                                                     \
        QTEST_SET_MAIN_SOURCE_PATH                                       \
        return QTest::qExec(&tests, argc, argv);                         \
    });

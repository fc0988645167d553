#pragma once

#include <QtTest>

/// A test class in a program with several. The program's first argument names the class to run.
class TestClass {
public:
    using Run = int (*)(int argc, char** argv);
    TestClass(const char* name, Run run);
};

/// Registers a test class with its program. Used at the end of the class's file instead of QTEST_MAIN().
#define ORVO_TEST_CLASS(Class)                                           \
    static const TestClass testClass(#Class, [](int argc, char** argv) { \
        Class tests;                                                     \
        QTEST_SET_MAIN_SOURCE_PATH                                       \
        return QTest::qExec(&tests, argc, argv);                         \
    });

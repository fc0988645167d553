#include "tests/support/TestProgram.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>

namespace {

std::map<std::string, TestClass::Run>& classes()
{
    static std::map<std::string, TestClass::Run> known;
    return known;
}

} // namespace

TestClass::TestClass(const char* name, Run run)
{
    classes().emplace(name, run);
}

int main(int argc, char** argv)
{
    const auto chosen = argc < 2 ? classes().end() : classes().find(argv[1]);
    if (chosen == classes().end()) {
        std::fprintf(stderr, "Usage: %s CLASS [argument for Qt Test ...], where CLASS is one of\n", argv[0]);
        for (const auto& [name, run] : classes())
            std::fprintf(stderr, "  %s\n", name.c_str());
        return 2;
    }
    std::copy(argv + 2, argv + argc + 1, argv + 1); // hides the class name from Qt's argument parser
    --argc;
    QApplication application(argc, argv);
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi); // as QTEST_MAIN() does: texts have the same size everywhere
    return chosen->second(argc, argv);
}

#pragma once

#include "tests/support/Patience.h"
#include "tests/support/ScriptedCamera.h"

#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTest>

#include <string>
#include <vector>

/// What the scripted camera recorded, as a Qt test compares it.
namespace recorded {

/// `Operation(a, b)` of every call whose operation starts with one of the prefixes.
[[nodiscard]] inline QStringList texts(const std::vector<std::string>& prefixes)
{
    QStringList texts;
    for (const scripted::Call& call : scripted::calls(prefixes))
        texts << QString::fromStdString(call.text());
    return texts;
}

/// The names of all operations but those that scripted::callNames() leaves out.
[[nodiscard]] inline QStringList operations()
{
    QStringList names;
    for (const std::string& name : scripted::callNames())
        names << QString::fromStdString(name);
    return names;
}

/// The same without the operations on nodes, which the feature browser makes.
[[nodiscard]] inline QStringList windowOperations()
{
    return operations().filter(QRegularExpression("^(?!Nd_)"));
}

/// Handles events until the display thread has completed `rounds` rounds; it polls the removal signal once in each.
/// A round takes at least 2 ms, so an image that will be shown is on screen after kRoundsOfAnImage, even after a full
/// frame period of 26 ms.
constexpr int kRoundsOfAnImage = 60;
[[nodiscard]] inline bool waitRounds(int rounds = kRoundsOfAnImage)
{
    const int until = scripted::count("Sys_WaitForSignal") + rounds;
    return QTest::qWaitFor([until] { return scripted::count("Sys_WaitForSignal") >= until; }, kPatienceMs);
}

} // namespace recorded

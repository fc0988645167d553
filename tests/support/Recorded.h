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

/// The same without the operations on nodes, which are the feature browser's business.
[[nodiscard]] inline QStringList windowOperations()
{
    return operations().filter(QRegularExpression("^(?!Nd_)"));
}

/// Handles events until the display thread went through so many rounds; it asks for the removal signal once in each.
/// A round takes 2 ms or more, so an image that is to be shown is on screen after kRoundsOfAnImage, whatever the pace
/// of 26 ms lets it wait for.
constexpr int kRoundsOfAnImage = 60;
[[nodiscard]] inline bool waitRounds(int rounds = kRoundsOfAnImage)
{
    const int until = scripted::count("Sys_WaitForSignal") + rounds;
    return QTest::qWaitFor([until] { return scripted::count("Sys_WaitForSignal") >= until; }, kPatienceMs);
}

} // namespace recorded

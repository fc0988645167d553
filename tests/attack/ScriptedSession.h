#pragma once

#include "tests/attack/ViewerSession.h"
#include "tests/support/ScriptedCamera.h"

#include <QStringList>

#include <cstdint>
#include <functional>
#include <vector>

/// The nodes of a small camera with one feature of each type and editor.
[[nodiscard]] std::vector<scripted::NodeSpec> smallCamera();

/// The window with the scripted camera.
class ScriptedSession : public ViewerSession {
public:
    /// Delivers images until the window has shown one, or `enough` says that none will come.
    bool showImage(const std::function<bool()>& enough);

    /// Features whose rows differ from the scripted camera.
    [[nodiscard]] QStringList wrongValues();

private:
    std::uint64_t m_frame = 0;
};

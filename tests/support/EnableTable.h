#pragma once

#include <string_view>

/// Which state of the main window enables which action; written down a second time, apart from the product's table.
struct EnableRow {
    const char* action;
    const char* states[5]; // idle, opening, opened, locked, acquiring
};
constexpr EnableRow kEnableTable[] = {
    {"actionOpen", {"on", "off", "keep", "keep", "keep"}},
    {"action_Menu_Open", {"on", "off", "keep", "keep", "keep"}},
    {"actionClose", {"off", "keep", "on", "keep", "keep"}},
    {"action_Menu_Close", {"off", "keep", "on", "keep", "keep"}},
    {"actionStart", {"off", "keep", "on", "off", "keep"}},
    {"action_Menu_Start", {"off", "keep", "on", "off", "keep"}},
    {"actionPause", {"off", "keep", "off", "keep", "on"}},
    {"action_Menu_Pause", {"off", "keep", "on", "keep", "on"}},
    {"actionStop", {"off", "keep", "off", "keep", "on"}},
    {"action_Menu_Stop", {"off", "keep", "on", "keep", "on"}},
    {"actionSoftwareTrigger", {"off", "keep", "off", "keep", "keep"}},
    {"action_Menu_One_Shot", {"off", "keep", "off", "keep", "keep"}},
    {"actionSnapshot", {"off", "keep", "keep", "keep", "on"}},
    {"action_Menu_Snapshot", {"off", "keep", "keep", "keep", "on"}},
    {"actionZoomIn", {"off", "keep", "scale < 4", "keep", "scale < 4"}},
    {"action_Menu_Zoom_In", {"off", "keep", "scale < 4", "keep", "scale < 4"}},
    {"actionZoomOut", {"off", "keep", "scale > 0.25", "keep", "scale > 0.25"}},
    {"action_Menu_Zoom_Out", {"off", "keep", "scale > 0.25", "keep", "scale > 0.25"}},
    {"actionNormalSize", {"off", "keep", "scale != 1", "keep", "scale != 1"}},
    {"action_Menu_Normal_Size", {"off", "keep", "on", "keep", "on"}},
    {"action_Menu_Exit", {"keep", "keep", "keep", "keep", "keep"}},
    {"action_Menu_About", {"keep", "keep", "keep", "keep", "keep"}},
};

/// The flag of an action after a change of state, by the entry of the table, the flag before, and the zoom factor.
[[nodiscard]] inline bool enabledBy(std::string_view rule, bool before, double scale)
{
    if (rule == "keep")
        return before;
    if (rule == "scale < 4")
        return scale < 4.0;
    if (rule == "scale > 0.25")
        return scale > 0.25;
    if (rule == "scale != 1")
        return scale != 1.0;
    return rule == "on";
}

#include "app/ActionStates.h"

#include "ui_MainWindow.h"

#include <array>
#include <cstddef>

namespace {

enum class Enable {
    On,
    Off,
    Keep,
    CanZoomIn,  // scale < 4.0; scaleImage() allows up to 8.0, both on purpose
    CanZoomOut, // scale > 0.25
    IsZoomed,   // scale != 1.0
};

constexpr auto On = Enable::On;
constexpr auto Off = Enable::Off;
constexpr auto Keep = Enable::Keep;
constexpr auto CanZoomIn = Enable::CanZoomIn;
constexpr auto CanZoomOut = Enable::CanZoomOut;
constexpr auto IsZoomed = Enable::IsZoomed;

struct ActionRow {
    QAction* Ui_MainWindow::*action;
    std::array<Enable, 5> states; // from MAIN_STATE_IDLE to MAIN_STATE_ACQUIRING
};

// Tool bar and menu deliberately differ: the menu's Pause and Stop stay enabled while a camera is merely open, and its
// Start while a stream is running.
constexpr ActionRow kActionRows[] = {
    // clang-format off
    //                                           idle  opening  opened     locked  acquiring
    {&Ui_MainWindow::actionOpen,                {On,   Off,     Keep,       Keep,   Keep}},
    {&Ui_MainWindow::action_Menu_Open,          {On,   Off,     Keep,       Keep,   Keep}},
    {&Ui_MainWindow::actionClose,               {Off,  Keep,    On,         Keep,   Keep}},
    {&Ui_MainWindow::action_Menu_Close,         {Off,  Keep,    On,         Keep,   Keep}},
    {&Ui_MainWindow::actionStart,               {Off,  Keep,    On,         Off,    Keep}},
    {&Ui_MainWindow::action_Menu_Start,         {Off,  Keep,    On,         Off,    Keep}},
    {&Ui_MainWindow::actionPause,               {Off,  Keep,    Off,        Keep,   On}},
    {&Ui_MainWindow::action_Menu_Pause,         {Off,  Keep,    On,         Keep,   On}},
    {&Ui_MainWindow::actionStop,                {Off,  Keep,    Off,        Keep,   On}},
    {&Ui_MainWindow::action_Menu_Stop,          {Off,  Keep,    On,         Keep,   On}},
    {&Ui_MainWindow::actionSoftwareTrigger,     {Off,  Keep,    Off,        Keep,   Keep}},
    {&Ui_MainWindow::action_Menu_One_Shot,      {Off,  Keep,    Off,        Keep,   Keep}},
    {&Ui_MainWindow::actionSnapshot,            {Off,  Keep,    Keep,       Keep,   On}},
    {&Ui_MainWindow::action_Menu_Snapshot,      {Off,  Keep,    Keep,       Keep,   On}},
    {&Ui_MainWindow::actionZoomIn,              {Off,  Keep,    CanZoomIn,  Keep,   CanZoomIn}},
    {&Ui_MainWindow::action_Menu_Zoom_In,       {Off,  Keep,    CanZoomIn,  Keep,   CanZoomIn}},
    {&Ui_MainWindow::actionZoomOut,             {Off,  Keep,    CanZoomOut, Keep,   CanZoomOut}},
    {&Ui_MainWindow::action_Menu_Zoom_Out,      {Off,  Keep,    CanZoomOut, Keep,   CanZoomOut}},
    {&Ui_MainWindow::actionNormalSize,          {Off,  Keep,    IsZoomed,   Keep,   IsZoomed}},
    {&Ui_MainWindow::action_Menu_Normal_Size,   {Off,  Keep,    On,         Keep,   On}},
    // clang-format on
};

void apply(QAction& action, Enable rule, double scale)
{
    switch (rule) {
    case Enable::On:
        action.setEnabled(true);
        break;
    case Enable::Off:
        action.setEnabled(false);
        break;
    case Enable::Keep:
        break;
    case Enable::CanZoomIn:
        action.setEnabled(scale < 4.0);
        break;
    case Enable::CanZoomOut:
        action.setEnabled(scale > 0.25);
        break;
    case Enable::IsZoomed:
        action.setEnabled(scale != 1.0);
        break;
    }
}

} // namespace

void applyActionStates(const Ui_MainWindow& ui, MAIN_STATE state, double scale)
{
    if (state < MAIN_STATE_IDLE || state > MAIN_STATE_ACQUIRING)
        return;
    const auto column = static_cast<std::size_t>(state - MAIN_STATE_IDLE);
    for (const ActionRow& row : kActionRows)
        apply(*(ui.*row.action), row.states[column], scale);
}

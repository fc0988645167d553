#pragma once

/// What the main window is doing; decides which actions the user may trigger.
enum MAIN_STATE {
    MAIN_STATE_IDLE = 1,         ///< no camera open
    MAIN_STATE_OPENING = 2,      ///< discovery dialog shown, or camera being opened
    MAIN_STATE_OPENED = 3,       ///< camera open, not acquiring
    MAIN_STATE_START_LOCKED = 4, ///< camera open, start not allowed; in the enable table, but never entered
    MAIN_STATE_ACQUIRING = 5,    ///< stream running
};

#pragma once

#include "app/MainState.h"

class Ui_MainWindow;

/// Enables and disables the actions of the form as `state` and the zoom factor ask. A value that is no state leaves
/// everything as it is.
void applyActionStates(const Ui_MainWindow& ui, MAIN_STATE state, double scale);

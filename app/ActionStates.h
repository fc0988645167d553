#pragma once

#include "app/MainState.h"

class Ui_MainWindow;

/// Enables and disables the actions of the form according to `state` and the zoom factor. An invalid state changes
/// nothing.
void applyActionStates(const Ui_MainWindow& ui, MAIN_STATE state, double scale);

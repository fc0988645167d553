#pragma once

#include <functional>

class QWidget;

/// What a simulated user does with a modal window that opened. It must close the window.
using ModalUser = std::function<void(QWidget& modal)>;

namespace modal {

/// Calls `act`, which blocks until its modal windows are closed. Hands each window that `find` returns to `user` once,
/// including one that opens on top of another. Returns the number of windows.
int during(const std::function<void()>& act, QWidget* (*find)(), const ModalUser& user);
/// The same for any modal window.
int during(const std::function<void()>& act, const ModalUser& user);

} // namespace modal

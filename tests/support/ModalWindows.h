#pragma once

#include <functional>

class QWidget;

/// What a user does with a modal window that came up; it is to be closed then.
using ModalUser = std::function<void(QWidget& modal)>;

namespace modal {

/// Does `act`, which waits for modal windows to end. Hands every window that `find` finds to `user`, once each: one
/// that comes up before the one below it is closed, too. How many there were.
int during(const std::function<void()>& act, QWidget* (*find)(), const ModalUser& user);
/// The same for any modal window.
int during(const std::function<void()>& act, const ModalUser& user);

} // namespace modal

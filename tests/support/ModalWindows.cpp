#include "tests/support/ModalWindows.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace {

constexpr int kPollMs = 5;

} // namespace

int modal::during(const std::function<void()>& act, QWidget* (*find)(), const ModalUser& user)
{
    int found = 0;
    QPointer<QWidget> handled;
    const QObject scope;
    // Scheduled anew before the user acts, because a window can bring up another one before it ends.
    const std::function<void()> poll = [&] {
        QTimer::singleShot(kPollMs, &scope, poll);
        QWidget* const window = find();
        if (!window || window == handled)
            return;
        handled = window;
        ++found;
        user(*window);
    };
    QTimer::singleShot(kPollMs, &scope, poll);
    act();
    return found;
}

int modal::during(const std::function<void()>& act, const ModalUser& user)
{
    return during(act, &QApplication::activeModalWidget, user);
}

#include "tests/support/ModalWindows.h"

#include <QApplication>
#include <QPointer>
#include <QTimerEvent>
#include <QWidget>

namespace {

constexpr int kPollMs = 5;

class Watch : public QObject {
public:
    Watch(QWidget* (*find)(), const ModalUser& user)
        : m_find(find)
        , m_user(user)
    {
        startTimer(kPollMs);
    }

    [[nodiscard]] int found() const { return m_found; }

protected:
    void timerEvent(QTimerEvent* event) override
    {
        // Restarted before the user acts, because a window can open another one before it closes.
        killTimer(event->timerId());
        startTimer(kPollMs);
        QWidget* const window = m_find();
        if (!window || window == m_handled)
            return;
        m_handled = window;
        ++m_found;
        m_user(*window);
    }

private:
    QWidget* (*m_find)();
    const ModalUser& m_user;
    int m_found = 0;
    QPointer<QWidget> m_handled;
};

} // namespace

int modal::during(const std::function<void()>& act, QWidget* (*find)(), const ModalUser& user)
{
    const Watch watch(find, user);
    act();
    return watch.found();
}

int modal::during(const std::function<void()>& act, const ModalUser& user)
{
    return during(act, &QApplication::activeModalWidget, user);
}

#include "tests/support/WindowDriver.h"

#include "discovery/DiscoveryDlg.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTextEdit>
#include <QTimer>

namespace {

constexpr int kPollMs = 5;

/// The dialog on screen whose list is filled, or was tried to be.
QWidget* readyDialog()
{
    auto* const dialog = qobject_cast<DiscoveryDlg*>(QApplication::activeModalWidget());
    if (!dialog)
        return nullptr;
    const auto* const update = dialog->findChild<QPushButton*>("PushButtonUpateCameraList");
    return update && update->isEnabled() ? dialog : nullptr;
}

/// Hands what `find` finds to `user`, once, while `act` waits for a modal window to end. False where nothing was found.
bool during(const std::function<void()>& act, QWidget* (*find)(), const std::function<void(QWidget&)>& user)
{
    bool found = false;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (QWidget* const window = find()) {
            poll.stop();
            found = true;
            user(*window);
        }
    });
    poll.start(kPollMs);
    act();
    return found;
}

} // namespace

WindowDriver::WindowDriver()
    : m_window(std::make_unique<MainWindow>())
{
    m_window->show();
}

WindowDriver::~WindowDriver() = default;

QAction* WindowDriver::action(const char* name) const
{
    auto* const found = child<QAction>(name);
    if (!found)
        qFatal("no action %s", name);
    return found;
}

void WindowDriver::trigger(const char* name)
{
    QAction* const wanted = action(name);
    if (!wanted->isEnabled())
        qFatal("%s is disabled", name);
    wanted->trigger();
}

void WindowDriver::triggerDisabled(const char* name)
{
    const QAction* const wanted = action(name);
    if (wanted->isEnabled())
        qFatal("%s is enabled", name);
    const QByteArray slot = QByteArray("on_") + name + "_triggered";
    const bool called = wanted->isCheckable()
                            ? QMetaObject::invokeMethod(m_window.get(), slot, Q_ARG(bool, !wanted->isChecked()))
                            : QMetaObject::invokeMethod(m_window.get(), slot);
    if (!called)
        qFatal("no slot %s", slot.constData());
}

void WindowDriver::open(const char* action)
{
    const auto takeFirst = [](DiscoveryDlg& dialog) {
        auto* const button = dialog.findChild<QPushButton*>("openButton");
        if (button->isEnabled()) {
            button->click();
        } else {
            dialog.reject();
        }
    };
    open(takeFirst, action);
}

void WindowDriver::open(const std::function<void(DiscoveryDlg&)>& user, const char* action)
{
    during([&] { trigger(action); }, readyDialog, [&](QWidget& dialog) { user(static_cast<DiscoveryDlg&>(dialog)); });
}

bool WindowDriver::triggerModal(const char* name, const std::function<void(QWidget&)>& user)
{
    return during([&] { trigger(name); }, QApplication::activeModalWidget, user);
}

QStringList WindowDriver::log() const
{
    const QString text = child<QTextEdit>("messageLogEdit")->toPlainText();
    return text.isEmpty() ? QStringList() : text.split('\n');
}

void WindowDriver::clearLog()
{
    child<QPushButton>("pushButtonClear")->click();
}

QString WindowDriver::rates() const
{
    return child<QLabel>("labelDispFps")->text();
}

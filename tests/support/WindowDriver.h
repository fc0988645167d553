#pragma once

#include "app/MainWindow.h"
#include "tests/support/ModalWindows.h"

#include <QAction>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class DiscoveryDlg;
class ImageView;

/// A main window over the scripted camera, and a user's hand on it. Scripts of the camera are set before the driver is
/// made or between its calls; making it does not reset them.
class WindowDriver {
public:
    WindowDriver();
    ~WindowDriver();
    Q_DISABLE_COPY_MOVE(WindowDriver)

    [[nodiscard]] MainWindow& window() { return *m_window; }

    /// Ends the program: destroys the window.
    void exit() { m_window.reset(); }

    [[nodiscard]] QAction* action(const char* name) const;
    [[nodiscard]] bool enabled(const char* name) const { return action(name)->isEnabled(); }

    /// Triggers the action; a disabled one, which no user could trigger, ends the program with a message.
    void trigger(const char* name);
    /// Calls the slot of an action that is disabled; an enabled one ends the program with a message.
    void triggerDisabled(const char* name);

    /// Triggers an action that brings up a modal window, and hands that to `user`, who ends it. False where none came.
    [[nodiscard]] bool triggerModal(const char* name, const ModalUser& user);

    /// Opens the first camera through the dialog, or does with the dialog what `user` does once the list is filled.
    void open(const char* action = "actionOpen");
    void open(const std::function<void(DiscoveryDlg&)>& user, const char* action = "actionOpen");
    /// Opens the first camera of that model; false where none is listed or it does not open. `chosen` is called when
    /// the model is the current one of the list.
    [[nodiscard]] bool openModel(const QString& model, const std::function<void()>& chosen = {});
    void start() { trigger("actionStart"); }
    void stop() { trigger("actionStop"); }
    void close() { trigger("actionClose"); }

    /// Null while no camera is open.
    [[nodiscard]] ImageView* imageView() const;
    /// What the view keeps free for images, in pixels of the camera.
    [[nodiscard]] QRectF imageArea() const;

    [[nodiscard]] QStringList log() const;
    void clearLog();
    [[nodiscard]] QString rates() const;
    /// What rates() is before the first report.
    [[nodiscard]] static QString noRates() { return "[Disp =           fps] , [Cap =           fps]"; }

    template <typename T> [[nodiscard]] T* child(const char* name) const { return m_window->findChild<T*>(name); }

private:
    std::unique_ptr<MainWindow> m_window;
};

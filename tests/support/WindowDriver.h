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

/// A main window and simulated user input for it. Tests script the camera before the driver is constructed or between
/// its calls; the constructor does not reset the script.
class WindowDriver {
public:
    WindowDriver();
    ~WindowDriver();
    Q_DISABLE_COPY_MOVE(WindowDriver)

    [[nodiscard]] MainWindow& window() { return *m_window; }

    /// Destroys the window, as at the end of the program.
    void exit() { m_window.reset(); }

    [[nodiscard]] QAction* action(const char* name) const;
    [[nodiscard]] bool enabled(const char* name) const { return action(name)->isEnabled(); }

    /// Triggers the action; a disabled one, which no user could trigger, ends the program with a message.
    void trigger(const char* name);
    /// Calls the slot of an action that is disabled; an enabled one ends the program with a message.
    void triggerDisabled(const char* name);

    /// Triggers an action that opens a modal window, and hands that to `user`, who closes it. False if none opened.
    [[nodiscard]] bool triggerModal(const char* name, const ModalUser& user);

    /// Opens the first camera through the dialog, or hands the dialog to `user` once its list is filled.
    void open(const char* action = "actionOpen");
    void open(const std::function<void(DiscoveryDlg&)>& user, const char* action = "actionOpen");
    /// Opens the first camera of that model; false if none is listed or it fails to open. `chosen` is called when the
    /// camera is selected in the list.
    [[nodiscard]] bool openModel(const QString& model, const std::function<void()>& chosen = {});
    void start() { trigger("actionStart"); }
    void stop() { trigger("actionStop"); }
    void close() { trigger("actionClose"); }

    /// Null while no camera is open.
    [[nodiscard]] ImageView* imageView() const;
    /// The area of the view reserved for images, in camera pixels.
    [[nodiscard]] QRectF imageArea() const;

    [[nodiscard]] QStringList log() const;
    void clearLog();
    [[nodiscard]] QString rates() const;
    /// The value of rates() before the first report.
    [[nodiscard]] static QString noRates() { return "[Disp =           fps] , [Cap =           fps]"; }

    template <typename T> [[nodiscard]] T* child(const char* name) const { return m_window->findChild<T*>(name); }

private:
    std::unique_ptr<MainWindow> m_window;
};

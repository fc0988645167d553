#pragma once

#include "tests/support/ScriptedCamera.h"
#include "tests/support/WindowDriver.h"

#include <QApplication>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdint>
#include <functional>
#include <vector>

class FeatureView;
class QModelIndex;
class QTableView;
class QWidget;

/// The nodes of a small camera with one feature of each type and editor.
[[nodiscard]] std::vector<scripted::NodeSpec> smallCamera();

/// The window with the scripted camera, operated the way a user does it. Operations return at once; they do nothing and
/// return false or null if a fault prevents them.
class ViewerSession {
public:
    ViewerSession();

    [[nodiscard]] WindowDriver& driver() { return m_driver; }
    /// Null while no camera is open.
    [[nodiscard]] FeatureView* features();

    bool trigger(const char* action);
    /// Opens the camera of that row, or cancels where the dialog does not let it be opened.
    bool open(int row = 0);
    /// Opens the editor of a feature by a click; null where it has none.
    [[nodiscard]] QWidget* editor(const QString& feature);
    /// Writes a value through the editor, whichever it is: a text into a line edit, the next entry of a combo box, a
    /// press of a button.
    bool edit(const QString& feature, const QString& text = {});
    /// Delivers images until the window has shown one, or `enough` says that none will come.
    bool showImage(const std::function<bool()>& enough);
    /// Saves the displayed image; false where no dialog opens.
    bool snapshot();
    /// Ends the window; the program goes on.
    void exit();

    /// Features whose rows differ from the scripted camera, or that do not agree with their items.
    [[nodiscard]] QStringList wrongRows(bool compareValues);

private:
    WindowDriver m_driver;
    QTemporaryDir m_folder;
    std::uint64_t m_frame = 0;
};

/// The application object of an attack: suppresses warnings of the offscreen platform and keeps running when a window
/// closes.
class AttackApplication : public QApplication {
public:
    AttackApplication(int& argc, char** argv);
};

/// Lets the timers of an object elapse now.
void elapseTimers(QObject& object);

/// Handles every event that is pending, deferred deletions included.
void handleEvents();

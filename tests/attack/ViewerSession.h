#pragma once

#include "tests/support/WindowDriver.h"

#include <QApplication>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class FeatureView;
class QModelIndex;
class QTableView;
class QWidget;

/// The window, operated the way a user does it. Operations return at once; they do nothing and return false or null if
/// a fault prevents them.
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
    /// Saves the displayed image; false where no dialog opens.
    bool snapshot();
    /// Ends the window; the program goes on.
    void exit();

    /// Rows that do not agree with their items.
    [[nodiscard]] QStringList wrongRows();

private:
    WindowDriver m_driver;
    QTemporaryDir m_folder;
};

/// The application object of an attack: suppresses warnings of the offscreen platform and keeps running when a window
/// closes.
class AttackApplication : public QApplication {
public:
    AttackApplication(int& argc, char** argv);

    /// What Qt has warned of since the last call: for example, a widget painted while it is painted.
    [[nodiscard]] static QStringList takeWarnings();
};

/// Lets the timers of an object elapse now.
void elapseTimers(QObject& object);

/// Handles every event that is pending, deferred deletions included.
void handleEvents();

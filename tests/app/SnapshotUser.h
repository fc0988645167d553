#pragma once

#include "tests/support/ShownImages.h"
#include "tests/support/WindowDriver.h"

#include <QImage>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class QFileDialog;
class QWidget;

/// A window with the scripted camera, a folder for snapshots, and simulated user input to take them.
class SnapshotUser {
public:
    SnapshotUser();

    [[nodiscard]] WindowDriver& driver() { return m_driver; }
    [[nodiscard]] QString folder() const { return m_folder.path(); }
    [[nodiscard]] QString path(const QString& name) const { return m_folder.filePath(name); }
    [[nodiscard]] QStringList files() const;

    /// The last delivered image.
    [[nodiscard]] const QImage& shown() const { return m_delivered; }

    /// Delivers an image that is converted to `pixels`, and waits until the window shows it. Starts the stream.
    void show(const QImage& pixels);

    /// Triggers the command; hands each modal window that opens to the next of `users`.
    void snapshot(const std::vector<ModalUser>& users, const char* action = "actionSnapshot");
    /// Calls the slot of the disabled command; no window may open.
    void snapshotDisabled(const char* action = "actionSnapshot");

    /// Saves under a name with a filter; no other window may open.
    void save(const QString& name, const QString& filter);

private:
    void answer(const std::vector<ModalUser>& users, const std::function<void()>& command);

    QTemporaryDir m_folder;
    QImage m_delivered;
    std::uint64_t m_frame = 0;
    WindowDriver m_driver;
    ShownImages m_shown{m_driver.window(), ShownImages::Keep::Last};
};

// The filters of the file dialog.
inline const QString kPng = "PNG (*.png)";
inline const QString kBmp = "BMP (*.bmp)";
inline const QString kJpeg = "JPEG (*.jpg *.jpeg)";

[[nodiscard]] QImage noise(int width, int height, quint32 seed);
/// Converts to the format of the tests' own images, for comparison with windows and files.
[[nodiscard]] QImage argb(const QImage& image);

[[nodiscard]] QFileDialog& fileDialog(QWidget& modal);
/// The full path that the file dialog proposes.
[[nodiscard]] QString proposed(QFileDialog& dialog);

[[nodiscard]] ModalUser choosing(const QString& name, const QString& filter = kPng);
[[nodiscard]] ModalUser cancelling();
void pressYes(QWidget& modal);
void pressOk(QWidget& modal);

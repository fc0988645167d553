#pragma once

#include "tests/support/ModalWindows.h"
#include "tests/support/WindowDriver.h"

#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QString>

/// Saves the displayed image to a file by way of the dialog; false if there is no such file afterwards.
[[nodiscard]] inline bool takeSnapshot(WindowDriver& driver, const QString& file)
{
    if (!driver.enabled("actionSnapshot"))
        return false;
    QFile::remove(file);
    modal::during([&] { driver.trigger("actionSnapshot"); },
                  [&](QWidget& window) {
                      auto* const dialog = qobject_cast<QFileDialog*>(&window);
                      if (!dialog)
                          qFatal("a snapshot opens %s", window.metaObject()->className());
                      dialog->findChild<QLineEdit*>("fileNameEdit")->setText(file);
                      QMetaObject::invokeMethod(dialog, "accept");
                  });
    return QFile::exists(file);
}

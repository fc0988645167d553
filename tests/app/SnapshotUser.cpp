#include "tests/app/SnapshotUser.h"

#include "tests/support/ScriptedCamera.h"

#include <QtTest>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include <cstring>

namespace {

void chooseFilter(QFileDialog& dialog, const QString& filter)
{
    auto* const combo = dialog.findChild<QComboBox*>("fileTypeCombo");
    combo->setFocus();
    while (combo->currentText() != filter) {
        const int before = combo->currentIndex();
        QTest::keyClick(combo, Qt::Key_Down);
        if (combo->currentIndex() == before)
            qFatal("there is no filter %s", qPrintable(filter));
    }
}

void pressSave(QFileDialog& dialog)
{
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Save), Qt::LeftButton);
}

void press(QWidget& modal, QMessageBox::StandardButton button)
{
    auto* const box = qobject_cast<QMessageBox*>(&modal);
    if (!box || !box->button(button))
        qFatal("expected a message box, got %s", modal.metaObject()->className());
    QTest::mouseClick(box->button(button), Qt::LeftButton);
}

} // namespace

QImage noise(int width, int height, quint32 seed)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            seed = seed * 1664525u + 1013904223u;
            image.setPixel(x, y, 0xff000000u | (seed >> 8));
        }
    }
    return image;
}

QImage argb(const QImage& image)
{
    return image.convertToFormat(QImage::Format_ARGB32);
}

// --- Dialogs --------------------------------------------------------------------------------------------------------

QFileDialog& fileDialog(QWidget& modal)
{
    auto* const dialog = qobject_cast<QFileDialog*>(&modal);
    if (!dialog)
        qFatal("expected a file dialog, got %s", modal.metaObject()->className());
    return *dialog;
}

QString proposed(QFileDialog& dialog)
{
    return dialog.directory().filePath(dialog.findChild<QLineEdit*>("fileNameEdit")->text());
}

ModalUser choosing(const QString& name, const QString& filter)
{
    return [=](QWidget& modal) {
        QFileDialog& dialog = fileDialog(modal);
        chooseFilter(dialog, filter);
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText(name);
        pressSave(dialog);
    };
}

ModalUser cancelling()
{
    return [](QWidget& modal) {
        auto* const buttons = fileDialog(modal).findChild<QDialogButtonBox*>("buttonBox");
        QTest::mouseClick(buttons->button(QDialogButtonBox::Cancel), Qt::LeftButton);
    };
}

void pressYes(QWidget& modal)
{
    press(modal, QMessageBox::Yes);
}

void pressOk(QWidget& modal)
{
    press(modal, QMessageBox::Ok);
}

// --- SnapshotUser ---------------------------------------------------------------------------------------------------

SnapshotUser::SnapshotUser()
{
    if (!QDir::homePath().startsWith(QDir::tempPath()))
        qFatal("the file dialog writes to the home folder: start this with tests/support/own-home");
}

QStringList SnapshotUser::files() const
{
    return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden);
}

void SnapshotUser::show(const QImage& pixels)
{
    scripted::onConvImage([pixels](void* dst, const void*, std::uint32_t, std::uint32_t) {
        std::memcpy(dst, pixels.constBits(), static_cast<std::size_t>(pixels.sizeInBytes()));
    });
    if (!scripted::streaming()) {
        scripted::setImageFormat(static_cast<std::uint32_t>(pixels.width()),
                                 static_cast<std::uint32_t>(pixels.height()), scripted::kMono8);
        m_driver.open();
        m_driver.start();
    }
    m_shown.forget();
    QVERIFY(scripted::deliverImage(++m_frame));
    QTRY_COMPARE(argb(m_shown.last()), pixels);
    m_delivered = pixels;
}

void SnapshotUser::answer(const std::vector<ModalUser>& users, const std::function<void()>& command)
{
    std::size_t next = 0;
    modal::during(command, [&](QWidget& window) {
        if (next == users.size()) {
            QTest::qFail(qPrintable(QString("a window too many: ") + window.metaObject()->className()), __FILE__,
                         __LINE__);
            qobject_cast<QDialog*>(&window)->reject();
            return;
        }
        const QPointer<QWidget> open = &window;
        users[next++](window);
        // A failed check leaves the dialog open.
        if (open && open->isVisible() && QTest::currentTestFailed())
            qobject_cast<QDialog*>(open.data())->reject();
    });
    QCOMPARE(next, users.size());
}

void SnapshotUser::snapshot(const std::vector<ModalUser>& users, const char* action)
{
    answer(users, [&] { m_driver.trigger(action); });
}

void SnapshotUser::snapshotDisabled(const char* action)
{
    answer({}, [&] { m_driver.triggerDisabled(action); });
}

void SnapshotUser::save(const QString& name, const QString& filter)
{
    snapshot({choosing(path(name), filter)});
}

// Saving the displayed image to a file.

#include "app/MainWindow.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QImageWriter>
#include <QMessageBox>

namespace {

/// `fileName` with the suffix for `format` ("PNG", "BMP", "JPEG"). A different suffix is removed without its dot, so
/// that shot.bmp becomes shot..png; this is deliberate.
QString withSuffixOf(const QString& format, QString fileName)
{
    const QString suffix = QFileInfo(fileName).suffix();
    if (suffix.endsWith(format, Qt::CaseInsensitive))
        return fileName;
    fileName.chop(suffix.size());
    return fileName + '.' + format.toLower();
}

/// Like QImage::save(), but also reports an error when the last bytes are flushed, such as a full disk.
bool save(const QImage& image, const QString& fileName)
{
    QImageWriter writer(fileName);
    if (!writer.write(image))
        return false;
    const auto* const file = qobject_cast<QFileDevice*>(writer.device());
    return file && file->error() == QFileDevice::NoError;
}

} // namespace

void MainWindow::on_actionSnapshot_triggered()
{
    if (captureImage.isNull())
        return;
    QString selectedFilter;
    const QString chosen =
        QFileDialog::getSaveFileName(this, tr("Save image File"), snapshotPath,
                                     tr("PNG (*.png);;BMP (*.bmp);;JPEG (*.jpg *.jpeg)"), &selectedFilter);
    if (chosen.isEmpty())
        return;
    // The path of the file, not its folder: the next dialog suggests the same name in the same folder.
    snapshotPath = QDir(chosen).path();

    const QString format = selectedFilter.split(' ').first();
    // Images keep arriving while the dialog is open: save the one displayed now.
    if (!save(captureImage, withSuffixOf(format, chosen))) {
        QMessageBox::warning(this, tr("Save failed"), tr("Cannot save a file."), QMessageBox::Ok);
        write_log(tr("Cannot save a file."));
    }
}

// Saving the displayed image to a file.

#include "app/MainWindow.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QImageWriter>
#include <QMessageBox>

namespace {

/// `fileName` with the suffix that `format` ("PNG", "BMP", "JPEG") asks for. A suffix that does not fit is taken off
/// without its dot, so that shot.bmp becomes shot..png; this is meant.
QString withSuffixOf(const QString& format, QString fileName)
{
    const QString suffix = QFileInfo(fileName).suffix();
    if (suffix.endsWith(format, Qt::CaseInsensitive))
        return fileName;
    fileName.chop(suffix.size());
    return fileName + '.' + format.toLower();
}

/// QImage::save(), but for one thing: it does not tell when the disk is full for the file's last bytes, which go out
/// when the writer flushes the file.
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
    // The file's own path, not its folder: the next dialog proposes the same name in the same place.
    snapshotPath = QDir(chosen).path();

    const QString format = selectedFilter.split(' ').first();
    // Images go on arriving while the dialog is open: what is saved is the one displayed now.
    if (!save(captureImage, withSuffixOf(format, chosen))) {
        QMessageBox::warning(this, tr("Save failed"), tr("Cannot save a file."), QMessageBox::Ok);
        write_log(tr("Cannot save a file."));
    }
}

// Saving the displayed image to a file.

#include "app/MainWindow.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
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
    if (!captureImage.save(withSuffixOf(format, chosen))) {
        QMessageBox::warning(this, tr("Save failed"), tr("Cannot save a file."), QMessageBox::Ok);
        write_log(tr("Cannot save a file."));
    }
}

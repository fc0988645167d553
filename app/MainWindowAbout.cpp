// The About box.

#include "app/MainWindow.h"

#include "app/Version.h"
#include "camera/OrvoCamApi.h"
#include "camera/TextField.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QMessageBox>
#include <QSpacerItem>

namespace {

constexpr char kRights[] = QT_TRANSLATE_NOOP("QMainWindow", "\n\nAll rights reserved.");
constexpr int kContentWidth = 545;

struct VersionRow {
    const char* label;
    const char (Orvo::CAM_SYSTEM_INFO::*text)[64];
};
// The names are padded so that the colons line up in the monospace font.
constexpr VersionRow kVersionRows[] = {
    {QT_TRANSLATE_NOOP("QMainWindow", "\n\n  OrvoU3vDriver : "), &Orvo::CAM_SYSTEM_INFO::driverVersion},
    {QT_TRANSLATE_NOOP("QMainWindow", "\n  OrvoU3vApi2   : "), &Orvo::CAM_SYSTEM_INFO::u3vApi2Version},
    {QT_TRANSLATE_NOOP("QMainWindow", "\n  OrvoU3vCamApi : "), &Orvo::CAM_SYSTEM_INFO::u3vCamApiVersion},
    {QT_TRANSLATE_NOOP("QMainWindow", "\n  OrvoCamApi    : "), &Orvo::CAM_SYSTEM_INFO::camApiVersion},
};

QString translated(const char* text)
{
    return QCoreApplication::translate("QMainWindow", text);
}

QString versionTexts()
{
    QString text = translated(kVersionText);
    Orvo::CAM_SYSTEM_INFO info{};
    // If the call fails the box shows only the version and the rights line.
    if (Orvo::Sys_GetInformation(&info) == Orvo::CAM_API_STS_SUCCESS) {
        for (const VersionRow& row : kVersionRows)
            text += translated(row.label) + QString::fromUtf8(fieldBytes(info.*row.text));
    }
    return text + translated(kRights);
}

} // namespace

void MainWindow::on_action_Menu_About_triggered()
{
    const QString details = versionTexts();

    QMessageBox box(this);
    box.setFont(QFont("monospace", 11));
    box.setIconPixmap(QPixmap(":/images/Icon/Viewer_Main_icon_2.ico"));
    box.setText("OrvoCamLinuxViewer");
    box.setInformativeText(details);
    box.setStandardButtons(QMessageBox::Ok);
    box.setDefaultButton(QMessageBox::Ok);
    // Comes last, because every setter above rebuilds the grid layout.
    if (auto* const grid = qobject_cast<QGridLayout*>(box.layout())) {
        grid->addItem(new QSpacerItem(kContentWidth, 0, QSizePolicy::Minimum, QSizePolicy::Expanding), grid->rowCount(),
                      0, 1, grid->columnCount());
    }
    box.exec();
}

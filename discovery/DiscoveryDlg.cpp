#include "discovery/DiscoveryDlg.h"

#include "camera/TextField.h"
#include "ui_DiscoveryDlg.h"

#include <QKeyEvent>

#include <array>

namespace {

constexpr int kFirstEnumerationMs = 100;

enum Column { kVendorName, kModelName, kSerialNo, kUserDefinedName, kCameraIndex, kColumnCount };

// The column of the user-defined name takes the remaining width.
constexpr std::array<std::pair<Column, int>, 3> kColumnWidths = {
    {{kVendorName, 140}, {kModelName, 140}, {kSerialNo, 80}}};

} // namespace

DiscoveryDlg::DiscoveryDlg(QWidget* parent)
    : QDialog(parent)
    , ui(std::make_unique<Ui_DiscoveryDlg>())
{
    ui->setupUi(this);

    QTreeWidget& list = *ui->discoveryWidget;
    list.setColumnCount(kColumnCount);
    list.setHeaderLabels({tr("VendorName"), tr("ModelName"), tr("SerialNo"), tr("UserDefinedName")});
    for (const auto& [column, width] : kColumnWidths)
        list.setColumnWidth(column, width);
    list.hideColumn(kCameraIndex);

    connect(ui->PushButtonUpateCameraList, &QPushButton::clicked, this, &DiscoveryDlg::discovery_camera);
    connect(ui->openButton, &QPushButton::clicked, this, &DiscoveryDlg::open_camera);
    connect(ui->cancelButton, &QPushButton::clicked, this, &DiscoveryDlg::reject);
    connect(&list, &QTreeWidget::itemDoubleClicked, ui->openButton, &QPushButton::click);
}

DiscoveryDlg::~DiscoveryDlg() = default;

void DiscoveryDlg::showEvent(QShowEvent*)
{
    // Otherwise the focus would go to "Cancel", the first enabled button.
    ui->discoveryWidget->setFocus();
    ui->PushButtonUpateCameraList->setEnabled(false);
    // The dialog may be shown again before the timer fires: one enumeration is enough.
    if (timer_id != 0)
        killTimer(timer_id);
    timer_id = startTimer(kFirstEnumerationMs, Qt::CoarseTimer);
}

void DiscoveryDlg::timerEvent(QTimerEvent*)
{
    killTimer(timer_id);
    timer_id = 0;
    discovery_camera();
    ui->PushButtonUpateCameraList->setEnabled(true);
}

void DiscoveryDlg::keyPressEvent(QKeyEvent* event)
{
    // Enter presses "Open", the default button. The other buttons receive the focus only by Tab; Enter then presses
    // that button.
    auto* const button = qobject_cast<QPushButton*>(focusWidget());
    if (button && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        button->click();
    } else {
        QDialog::keyPressEvent(event);
    }
}

void DiscoveryDlg::discovery_camera()
{
    // The update button is disabled during the search and would pass the focus to "Cancel".
    const bool updating = ui->PushButtonUpateCameraList->hasFocus();
    if (updating)
        ui->discoveryWidget->setFocus();
    listCameras();
    if (updating)
        ui->PushButtonUpateCameraList->setFocus();
}

void DiscoveryDlg::listCameras()
{
    ui->PushButtonUpateCameraList->setEnabled(false);
    ui->openButton->setEnabled(false);
    ui->discoveryWidget->clear();

    std::uint32_t count = 0;
    CAM_API_STATUS status = Orvo::Sys_GetNumOfCameras(&count);
    if (status != Orvo::CAM_API_STS_SUCCESS) {
        // The update button stays disabled until the dialog is shown again; after the first enumeration the timer
        // enables it.
        emit setError(status, "Sys_GetNumOfCameras()");
        return;
    }
    if (count == 0) {
        ui->PushButtonUpateCameraList->setEnabled(true);
        return;
    }
    for (std::int32_t index = 0; index < static_cast<std::int32_t>(count); ++index) {
        Orvo::CAM_INFO info{};
        status = Orvo::Cam_GetInformation(0, static_cast<std::uint32_t>(index), &info);
        if (status != Orvo::CAM_API_STS_SUCCESS) {
            emit setError(status, "Cam_GetInformation()");
            ui->PushButtonUpateCameraList->setEnabled(true);
            return;
        }
        addCamera(index, info);
    }
    ui->openButton->setEnabled(true);
    ui->PushButtonUpateCameraList->setEnabled(true);
}

void DiscoveryDlg::addCamera(std::int32_t index, const Orvo::CAM_INFO& info)
{
    auto* const row = new QTreeWidgetItem(ui->discoveryWidget);
    row->setText(kVendorName, QString::fromLatin1(fieldBytes(info.vendorName)));
    row->setText(kModelName, QString::fromLatin1(fieldBytes(info.modelName)));
    row->setText(kSerialNo, QString::fromLatin1(fieldBytes(info.serialNumber)));
    row->setText(kUserDefinedName, QString::fromLatin1(fieldBytes(info.userDefinedName)));
    row->setText(kCameraIndex, QString("%1").arg(index));
    if (index == 0)
        ui->discoveryWidget->setCurrentItem(row);
}

bool DiscoveryDlg::get_current_device(uint32_t* cur_device)
{
    const QList<QTreeWidgetItem*> selected = ui->discoveryWidget->selectedItems();
    if (selected.isEmpty())
        return false;
    *cur_device = selected.first()->text(kCameraIndex).toUInt();
    return true;
}

void DiscoveryDlg::on_discoveryWidget_itemSelectionChanged()
{
    std::uint32_t index = 0;
    if (get_current_device(&index))
        current_device = index;
}

void DiscoveryDlg::open_camera()
{
    if (!ui->discoveryWidget->selectedItems().isEmpty())
        done(QDialog::Accepted);
}

#pragma once

#include "camera/CameraTypes.h"

#include <QDialog>
#include <QString>

#include <cstdint>
#include <memory>

class Ui_DiscoveryDlg;

/// Lists the attached cameras and lets the user select one; does not open it. The search starts 100 ms after the dialog
/// is shown, so that the dialog is on screen during the search. Modal. Lives on the GUI thread.
class DiscoveryDlg : public QDialog {
    Q_OBJECT

public:
    explicit DiscoveryDlg(QWidget* parent = nullptr);
    ~DiscoveryDlg() override;

    /// Camera index of the last selected row: the camera to open after the dialog has been accepted.
    std::uint32_t current_device = 0;

signals:
    /// A camera operation failed; `title_str` names it.
    void setError(CAM_API_STATUS status, QString title_str);
    void writeLog(QString wstring);

public slots:
    /// Clears the list and fills it again.
    void discovery_camera();

    /// Accepts the dialog if a row is selected.
    void open_camera();

    /// The camera index of the selected row. False, without writing it, if none is selected.
    bool get_current_device(uint32_t* cur_device);

    void on_discoveryWidget_itemSelectionChanged();

protected:
    void showEvent(QShowEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void listCameras();
    void addCamera(std::int32_t index, const Orvo::CAM_INFO& info);

    std::unique_ptr<Ui_DiscoveryDlg> ui;
    int timer_id = 0;
};

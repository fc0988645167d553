// The slots of tool bar and menus. The form connects them by name; most commands are in both.

#include "app/MainWindow.h"

#include "ui_MainWindow.h"

void MainWindow::on_actionOpen_triggered()
{
    open_camera();
}

void MainWindow::on_action_Menu_Open_triggered()
{
    open_camera();
}

void MainWindow::on_actionClose_triggered()
{
    close_camera();
}

void MainWindow::on_action_Menu_Close_triggered()
{
    close_camera();
}

void MainWindow::on_action_Menu_Exit_triggered()
{
    close();
}

void MainWindow::on_actionStart_triggered()
{
    start_acquisition();
}

void MainWindow::on_action_Menu_Start_triggered()
{
    start_acquisition();
}

void MainWindow::on_actionStop_triggered()
{
    stop_acquisition();
}

void MainWindow::on_action_Menu_Stop_triggered()
{
    stop_acquisition();
}

void MainWindow::on_actionPause_triggered(bool checked)
{
    set_disp_image(checked);
}

void MainWindow::on_action_Menu_Pause_triggered(bool checked)
{
    // The two Pause actions have separate check marks; the one used last decides.
    set_disp_image(checked);
}

void MainWindow::set_disp_image(bool paused)
{
    displayEnabled.store(!paused, std::memory_order_relaxed);
}

void MainWindow::on_actionSoftwareTrigger_triggered()
{
    execute_software_trigger();
}

void MainWindow::on_action_Menu_One_Shot_triggered()
{
    execute_software_trigger();
}

void MainWindow::on_action_Menu_Snapshot_triggered()
{
    on_actionSnapshot_triggered();
}

// --- Zoom -----------------------------------------------------------------------------------------------------------

void MainWindow::on_actionZoomIn_triggered()
{
    emit Zoom_In();
    scaleImage(2.0);
}

void MainWindow::on_action_Menu_Zoom_In_triggered()
{
    on_actionZoomIn_triggered();
}

void MainWindow::on_actionZoomOut_triggered()
{
    emit Zoom_Out();
    scaleImage(0.5);
}

void MainWindow::on_action_Menu_Zoom_Out_triggered()
{
    on_actionZoomOut_triggered();
}

void MainWindow::on_actionNormalSize_triggered()
{
    emit Zoom_Reset();
    scale = 1.0;
    scaleImage(1.0);
}

void MainWindow::on_action_Menu_Normal_Size_triggered()
{
    on_actionNormalSize_triggered();
}

void MainWindow::scaleImage(double factor)
{
    // Two deliberate oddities: zooming goes up to 8.0 here, while a change of state stops at 4.0; and at 1.0 the menu's
    // Zoom Out is disabled but the tool bar's is not.
    scale *= factor;
    ui->actionZoomIn->setEnabled(scale < 8.0);
    ui->actionZoomOut->setEnabled(scale > 0.25);
    ui->actionNormalSize->setEnabled(scale != 1.0);
    ui->action_Menu_Zoom_In->setEnabled(scale < 8.0);
    ui->action_Menu_Zoom_Out->setEnabled(scale != 1.0);

    if (captureImage.width() >= 1 && captureImage.height() >= 1)
        update_capture_image();
}

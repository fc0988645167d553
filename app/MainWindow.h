#pragma once

#include "app/MainState.h"
#include "app/OperationLogFile.h"
#include "camera/CameraTypes.h"
#include "display/ConversionBuffer.h"
#include "display/KeptImages.h"

#include <QImage>
#include <QMainWindow>
#include <QMutex>
#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>

class DispThread;
class FeatureView;
class ImageView;
class MessageLog;
class Ui_MainWindow;

/// The window of the program and the owner of the camera connection: one camera at a time, its stream, its display
/// thread and its feature browser. Lives on the GUI thread; members that other threads touch say so.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    /// No menu: docks and tool bar have no titles to list, and a hidden one could not be shown again.
    [[nodiscard]] QMenu* createPopupMenu() override { return nullptr; }

signals:
    // The image view listens to all but the last; camera callbacks emit the last from their own threads.
    void Set_Image_Size(int width, int height);
    void Update_Image(QImage pimage);
    void Clear_Image();
    void Zoom_In();
    void Zoom_Out();
    void Zoom_Reset();
    void writeLog(QString wstring);

private slots:
    void on_actionOpen_triggered();
    void on_actionClose_triggered();
    void on_actionStart_triggered();
    void on_actionStop_triggered();
    void on_actionZoomIn_triggered();
    void on_actionSoftwareTrigger_triggered();
    void on_actionNormalSize_triggered();
    void on_actionZoomOut_triggered();
    void on_actionPause_triggered(bool checked);
    void on_action_Menu_Open_triggered();
    void on_action_Menu_Close_triggered();
    void on_action_Menu_Exit_triggered();
    void on_action_Menu_Start_triggered();
    void on_action_Menu_Stop_triggered();
    void on_action_Menu_Pause_triggered(bool checked);
    void on_action_Menu_One_Shot_triggered();
    void on_action_Menu_Zoom_In_triggered();
    void on_action_Menu_Normal_Size_triggered();
    void on_action_Menu_Zoom_Out_triggered();
    void on_action_Menu_About_triggered();
    void on_pushButtonClear_clicked();
    void on_actionSnapshot_triggered();
    void on_action_Menu_Snapshot_triggered();
    void disp_fps(double capFps, double dispFps);
    void disp_image(QImage image);
    void removed_camera();
    void set_error(CAM_API_STATUS status, QString title_str);
    void write_log(QString text);
    void check_software_trigger_mode();

private:
    // The display thread reads the members of the running stream in place; `acquiring` publishes them.
    friend class DispThread;

    void open_camera();
    void close_camera();
    void terminate();
    void update_main_dialog();
    void change_state(MAIN_STATE newState);
    void scaleImage(double factor);
    void set_disp_image(bool paused);
    void write_operation(const QString& entry);

    // MainWindowStream.cpp
    [[nodiscard]] bool get_camera_parameter(bool* changed);
    void initialize_image_view(int newWidth, int newHeight);
    [[nodiscard]] bool open_stream();
    void start_acquisition();
    void stop_acquisition();
    bool close_stream();
    void execute_software_trigger();
    void update_capture_image();

    // Called on threads of the camera library with the main window as context.
    static void CallBackImageAcquired(Orvo::CAM_HANDLE camera, CAM_STRM_HANDLE stream, Orvo::CAM_IMAGE_INFO* info,
                                      std::uint32_t bufferIndex, void* context);
    static void CallBackErrorImage(Orvo::CAM_HANDLE camera, CAM_STRM_HANDLE stream, std::uint32_t status,
                                   std::uint32_t bufferIndex, void* context);
    static void CallbackBufferBusy(Orvo::CAM_HANDLE camera, CAM_STRM_HANDLE stream, std::uint32_t bufferIndex,
                                   void* context);

    std::unique_ptr<Ui_MainWindow> ui;
    std::atomic<bool> firstFrameSeen{false}; // set by the callback, read by the display thread; never cleared
    CAM_STRM_HANDLE stream = 0;
    std::uint32_t pixelFormat = 0;
    std::shared_ptr<ConversionBuffer> convBuffer; // the display thread fills and lends it
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::atomic<std::uint32_t> captureCount{0}; // incremented by the callback, reset by the display thread
    std::atomic<bool> acquiring{false};         // publishes the stream's members to display thread and callbacks
    std::atomic<bool> displayEnabled{true};     // false = paused; read by the display thread
    CAM_SIGNAL_HANDLE removalSignal = 0;
    bool cameraOpened = false;
    std::uint32_t cameraIndex = 0;
    Orvo::CAM_HANDLE camera = 0;
    DispThread* dispThread = nullptr;
    std::atomic<std::uint32_t> lastFrameNumber{0}; // low 32 bits; touched by the callback
    FeatureView* featureView = nullptr;
    QImage captureImage;
    KeptImages displayedImages; // owns the memory of captureImage
    QMutex captureMutex;        // guards captureImage while it is handed to the image view
    double scale = 1.0;
    bool skipFirstFps = false;
    ImageView* imageView = nullptr;
    MAIN_STATE state = MAIN_STATE_IDLE;
    bool logEnabled = true;
    MessageLog* messageLog = nullptr; // owned by the text box of the log
    OperationLogFile operationLog;
    QString snapshotPath;
};

#pragma once

#include "camera/OrvoCamApi.h"

#include <QWidget>

/// The feature browser of one opened camera. Lives on the GUI thread.
class FeatureView : public QWidget {
    Q_OBJECT

public:
    explicit FeatureView(QWidget* parent = nullptr);

    /// Shows the features of the camera, which stays open for as long as this view lives.
    void SetCam(Orvo::CAM_HANDLE camera);

    void closeEditOperation();

    /// Reads the values anew; from the camera where `force` is true.
    void updateAllFeatures(bool force);

signals:
    /// The camera's trigger mode or trigger source was written.
    void checkSoftwareTriggerMode();
};

#include "features/FeatureView.h"

FeatureView::FeatureView(QWidget* parent)
    : QWidget(parent)
{
}

void FeatureView::SetCam(Orvo::CAM_HANDLE) {}

void FeatureView::closeEditOperation() {}

void FeatureView::updateAllFeatures(bool) {}

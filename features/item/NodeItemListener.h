#pragma once

class QString;

/// The interface of the view for its node items. Lives on the GUI thread.
class NodeItemListener {
public:
    /// The access mode of the item in this row has changed.
    virtual void setCellColor(int row) = 0;

    /// A value was written to the camera.
    virtual void setValuesWritten() = 0;
    /// Other values may have changed: reads all of them again; without `force` only if one was written.
    virtual void updateAllFeatures(bool force) = 0;
    /// The trigger mode or the trigger source was written.
    virtual void triggerWritten() = 0;
    /// Tells whether an item is writing. No editor opens meanwhile.
    virtual void setWriteInProgress(bool inProgress) = 0;

    /// The highest OperationLogMode that is logged.
    [[nodiscard]] virtual int opeLogLevel() const = 0;
    /// Emits an entry of the operation log. A receiver may change the text.
    virtual void appendOpeLog(QString& entry) = 0;

protected:
    ~NodeItemListener() = default;
};

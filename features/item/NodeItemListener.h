#pragma once

class QString;

/// What a node item asks of the view that shows it. Lives on the GUI thread.
class NodeItemListener {
public:
    /// The access mode of the item in this row has changed.
    virtual void setCellColor(int row) = 0;

    /// A value was written to the camera.
    virtual void setValuesWritten() = 0;
    /// Other values may have changed: reads them all anew, without `force` only where one was written.
    virtual void updateAllFeatures(bool force) = 0;
    /// The trigger mode or the trigger source was written.
    virtual void triggerWritten() = 0;
    /// While an item writes no editor opens.
    virtual void setWriteInProgress(bool inProgress) = 0;

    /// The OperationLogMode up to which entries are made.
    [[nodiscard]] virtual int opeLogLevel() const = 0;
    /// Passes an entry of the operation log on. A receiver may change the text.
    virtual void appendOpeLog(QString& entry) = 0;

protected:
    ~NodeItemListener() = default;
};

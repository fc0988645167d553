#pragma once

#include "camera/OrvoCamApi.h"
#include "features/item/NodeEditor.h"
#include "features/item/NodeText.h"
#include "features/item/OperationLog.h"

#include <QObject>
#include <QPointer>
#include <QStandardItem>
#include <QString>
#include <QStringList>
#include <QWidget>

class FeatureView;
class NodeItemListener;

/// One node (feature) of the opened camera, and at the same time the model item of its value cell. Lives on the GUI
/// thread; every member may call the camera unless documented otherwise.
///
/// setNode reads once what does not change while the camera stays open. The access mode, the value and the range are
/// read on request. A failure is shown as value text and in the operation log; nothing else reports it to the user.
///
/// Items are owned by their model and have no QObject parent. Keep a QPointer to an item: it is deleted with its model.
///
/// The view colours the item's row, is notified of writes and emits the operation log; an item without a view logs
/// nothing.
class GenAPINodeItem : public QObject, public QStandardItem {
    Q_OBJECT

public:
    /// An item without a node.
    explicit GenAPINodeItem(QObject* parent);
    GenAPINodeItem(unsigned long camHandle, unsigned long nodeHandle, int baseIndex, FeatureView* view,
                   QObject* parent);
    ~GenAPINodeItem() override;

    GenAPINodeItem(const GenAPINodeItem&) = delete;
    GenAPINodeItem& operator=(const GenAPINodeItem&) = delete;

    /// Binds the item to a node: reads its properties and its value, chooses its editor and fills the item's roles
    /// (edit, tool tip, EditorKindRole, ItemIndexRole). A handle of 0 leaves a cleared item without roles. Returns 0;
    /// properties that could not be read keep their cleared values.
    int setNode(unsigned long camHandle, unsigned long nodeHandle, int baseIndex);
    /// Forgets the node; the camera handle, the view and the item's roles stay.
    void clear();

    /// Qt::EditRole writes the value to the camera (setNodeValue of its text) and stores nothing itself; every other
    /// role is stored as in any item.
    void setData(const QVariant& value, int role) override;

    // --- Cached properties: no camera access ----------------------------------------------------------------------

    [[nodiscard]] unsigned long getCamHandle() const { return m_camHandle; }
    [[nodiscard]] unsigned long getNodeHandle() const { return m_node.handle; }
    [[nodiscard]] int getBaseIndex() const { return m_node.baseIndex; }
    [[nodiscard]] Orvo::NodeType getNodeType() const { return m_node.type; }
    [[nodiscard]] QString getNodeName() const { return m_node.name; }
    [[nodiscard]] Orvo::NodeAccessMode getAccessMode() const { return m_node.accessMode; }
    [[nodiscard]] Orvo::NodeRepresentation getRepresentation() const { return m_node.representation; }
    [[nodiscard]] EditorWidgetType getTypeEditor() const { return m_node.editor; }
    [[nodiscard]] QString getDescription() const { return m_node.description; }
    [[nodiscard]] QString getToolTip() const { return m_node.toolTip; }
    /// The range as the last updateVals read it.
    [[nodiscard]] long getMinInt() const { return m_node.minInt; }
    [[nodiscard]] long getMaxInt() const { return m_node.maxInt; }
    [[nodiscard]] long getIncInt() const { return m_node.incInt; }
    [[nodiscard]] double getMinFloat() const { return m_node.minFloat; }
    [[nodiscard]] double getMaxFloat() const { return m_node.maxFloat; }
    [[nodiscard]] bool getHasIncFloat() const { return m_node.hasIncFloat; }
    [[nodiscard]] double getIncFloat() const { return m_node.incFloat; }

    [[nodiscard]] bool isCategory() const;
    [[nodiscard]] bool isImplemented() const;
    /// Write-only or read-write.
    [[nodiscard]] bool isWritable() const;
    /// Read-write only.
    [[nodiscard]] bool isEditable() const;

    /// "Integer", "Boolean" and so on.
    [[nodiscard]] QString getStrTypeNode() const;
    /// "C" for a category, else "B", "E", "G" or "I" by visibility; lower case where the node is not implemented.
    [[nodiscard]] QString getUserLevelAbbreviated() const;

    /// Clamped to the range and rounded to its increment, as the last updateVals read them.
    [[nodiscard]] double getValidNodeValue(double value) const;
    [[nodiscard]] long getValidNodeValue(long value) const;

    /// The value as it is shown, without unit.
    [[nodiscard]] QString getValueStr(long value) const;
    [[nodiscard]] QString getValueStr(double value) const;

    // --- Reading --------------------------------------------------------------------------------------------------

    /// Reads the access mode, and the view colours the row accordingly. `changed` (may be null) receives whether it has
    /// changed. Returns 21 without a node, else the status of the call.
    int updateAccessMode(bool* changed);

    /// The value as text, with or without its unit. Without `force` returns the text of the last successful
    /// access, and calls the camera only if there is none. The text with unit becomes the item's edit role.
    QString getNodeValue(bool withUnit, bool force);
    /// The number read last, after getNodeValue(false, force); a failed read leaves it unchanged.
    long getValInt(bool force);
    double getValFloat(bool force);
    /// The number of the current entry of an enumeration; 0 for any other node.
    long getEnumIntValue();

    /// The choices for a combo box; for an enumeration, the entries that can be chosen now. Empty after a failure.
    QStringList getItemsValue();

    /// Reads access mode, value and maximum; with `all` the minimum and the increment too.
    void updateVals(bool all);

    /// The line under the description: the range as it was read last, or the current entry of an enumeration.
    QString getAdditionalInfo();

    // --- Writing --------------------------------------------------------------------------------------------------
    // Each returns a status: 13 for a value that this node does not accept. For a node that is not writable, a number
    // gives 13 and a text 2055.

    /// Parses the text in the node's notation and writes the value.
    int setNodeValue(const QString& text);
    /// Writes an integer, or an enumeration by its number, and reads the value back.
    int setNodeValue(long value);
    /// Writes a float.
    int setNodeValue(double value);

    /// The editor that is open on this item, null for none; the slots below read it.
    void setEditor(QWidget* widget);

    // --- Operation log --------------------------------------------------------------------------------------------

    /// Adds `text`, and a failure line if `status` is not 0, to `log` if the view's level is at least `mode`.
    void appendOpeLog(QString& log, const QString& text, OperationLogMode mode, unsigned int status) const;

public slots:
    void spinBox_ValueChanged(int value);
    void lineEdit_EditingFinished();
    void button_Clicked();
    /// Writes the chosen entry. Does nothing if the index is the one that the editor had when it was attached.
    void combo_CurrentIndexChanged(int index);
    /// Part of the interface; these two do nothing.
    void slider_EditingFinished();
    void slider_sliderMoved();

private:
    /// The cached properties of the node; the initial values are those of an item without a node.
    struct Node {
        Orvo::CAM_NODE_HANDLE handle = 0;
        int baseIndex = -1;
        Orvo::NodeType type = Orvo::NODE_TYPE_UNKNOWN;
        QString name;
        Orvo::NodeAccessMode accessMode = Orvo::NODE_ACCESS_MODE_UNDEFINED;
        Orvo::TC_NODE_VISIBILITY visibility = Orvo::NODE_VISIBILITY_INVISIBLE;
        QString description;
        QString toolTip;
        Orvo::NodeRepresentation representation = Orvo::NODE_REPRESENTATION_PURE_NUMBER;
        QString unit;

        Orvo::FloatDisplayNotation displayNotation = Orvo::FLOAT_DISPLAY_NOTATION_FIXED;
        bool hasIncFloat = false;
        double incFloat = 0;
        double maxFloat = 0;
        double minFloat = 0;
        double valueFloat = 0; ///< read last
        std::int64_t displayPrecision = 2;

        std::int64_t incInt = 0;
        std::int64_t maxInt = 0;
        std::int64_t minInt = 0;
        std::int64_t valueInt = 0; ///< read last

        EditorWidgetType editor = EditorNone;
        char floatFormat = 'f'; ///< of QString::number
        bool useNameOverrides = true;
        QString valueText;
        bool valueTextValid = false; ///< valueText may be shown without reading from the camera
    };

    void readProperties();
    void readFloatNotation();

    /// Reads the value by type and access mode into the cached number and text, and builds its log.
    Orvo::CAM_API_STATUS readValue(QString& log);
    Orvo::CAM_API_STATUS readInteger();
    Orvo::CAM_API_STATUS readBoolean();
    Orvo::CAM_API_STATUS readFloat();
    /// If the camera announces fewer than `leastSize` bytes, that counts as a failure.
    Orvo::CAM_API_STATUS readValueText(NodeTextOperation operation, std::uint32_t leastSize);
    void readFloatRange(bool all, QString& log);
    void readIntegerRange(bool all, QString& log);
    /// Sets the edit role to the value text with its unit, without writing to the camera, and returns it.
    QString showValueText();

    /// Writes the text by node type. `fragment` receives the log of the write, even if the text could not be parsed.
    Orvo::CAM_API_STATUS writeText(const QString& text, QString& fragment);
    Orvo::CAM_API_STATUS writeInteger(const QString& text, QString& fragment);
    Orvo::CAM_API_STATUS writeBoolean(const QString& text, QString& fragment);
    Orvo::CAM_API_STATUS writeCommand(const QString& text, QString& fragment);
    Orvo::CAM_API_STATUS writeFloat(const QString& text, QString& fragment);
    /// Stores the outcome of an attempted write; `shownText` becomes the value text if it succeeded. Returns the
    /// status.
    Orvo::CAM_API_STATUS written(Orvo::CAM_API_STATUS status, const QString& shownText);
    void tellValuesWritten();

    [[nodiscard]] int opeLogLevel() const;
    /// Passes a non-empty entry to the view, preceded by the line that looks up the node. appendOpeLog has already
    /// applied the log level.
    void sendOpeLog(const QString& log);
    void showChosenEntry();

    Orvo::CAM_API_STATUS m_lastStatus = Orvo::CAM_API_STS_SUCCESS; ///< of the last camera call
    NodeItemListener* m_listener = nullptr;                        ///< the view
    Orvo::CAM_HANDLE m_camHandle = 0;
    Node m_node;

    QPointer<QWidget> m_editor;
    int m_comboIndex = -1; ///< of the combo box when it was attached
};

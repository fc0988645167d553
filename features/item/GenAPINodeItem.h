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

/// One node (feature) of the opened camera, and at once the cell of the value column that shows it. Lives on the GUI
/// thread; every member may call the camera unless it says otherwise.
///
/// What does not change while the camera stays open is read once, by setNode. The access mode, the value and the range
/// are read when asked for. Nothing is reported to the user: a failure shows as value text and in the operation log.
///
/// Items are owned by their model and have no QObject parent. Whoever keeps one keeps a QPointer: they die with the
/// model.
///
/// Its view colours its row, hears of writes and carries the operation log; an item without a view logs nothing.
class GenAPINodeItem : public QObject, public QStandardItem {
    Q_OBJECT

public:
    /// An item of no node.
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

    /// Reads the access mode and has the view colour the row by it. `changed` (may be null) tells whether it differs
    /// from before. 21 without a node, else the status of the call.
    int updateAccessMode(bool* changed);

    /// The value as text, with or without its unit. Without `force` the text of the last successful access is taken;
    /// the camera is called only where there is none. The text with unit becomes the item's edit role.
    QString getNodeValue(bool withUnit, bool force);
    /// The number that was read last, after getNodeValue(false, force); a failed read leaves it.
    long getValInt(bool force);
    double getValFloat(bool force);
    /// Of an enumeration; 0 of any other node.
    long getEnumIntValue();

    /// The choices of a combo box: of an enumeration the entries that can be chosen now. Empty after a failure.
    QStringList getItemsValue();

    /// Reads access mode, value and maximum; with `all` the minimum and the increment too.
    void updateVals(bool all);

    /// The line under the description: the range as it was read last, or the current entry of an enumeration.
    QString getAdditionalInfo();

    // --- Writing --------------------------------------------------------------------------------------------------
    // Each returns a status: 13 for what this node does not take, and for a number where it is not writable. A text
    // gives 2055 there.

    /// Writes what the text says in the node's own notation.
    int setNodeValue(const QString& text);
    /// To an integer, or to an enumeration by its number; reads the value back.
    int setNodeValue(long value);
    /// To a float.
    int setNodeValue(double value);

    /// The editor that is open on this item, null for none; the slots below read it.
    void setEditor(QWidget* widget);

    // --- Operation log --------------------------------------------------------------------------------------------

    /// Adds `text`, and a failure line where `status` is not 0, to `log` where the view's level is at least `mode`.
    void appendOpeLog(QString& log, const QString& text, OperationLogMode mode, unsigned int status) const;

public slots:
    void spinBox_ValueChanged(int value);
    void lineEdit_EditingFinished();
    void button_Clicked();
    /// Writes the chosen entry; nothing where the index is the one at which the editor was attached.
    void combo_CurrentIndexChanged(int index);
    /// These two do nothing.
    void slider_EditingFinished();
    void slider_sliderMoved();

private:
    /// What is known of the node; the initial values are those of an item without one.
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
        bool valueTextValid = false; ///< valueText may be shown without asking the camera
    };

    void readProperties();
    void readFloatNotation();

    /// Reads the value by type and access mode into the cached number and text, and builds its log.
    Orvo::CAM_API_STATUS readValue(QString& log);
    Orvo::CAM_API_STATUS readInteger();
    Orvo::CAM_API_STATUS readBoolean();
    Orvo::CAM_API_STATUS readFloat();
    /// A text announced with fewer bytes than `leastSize` counts as failed.
    Orvo::CAM_API_STATUS readValueText(NodeTextOperation operation, std::uint32_t leastSize);
    void readFloatRange(bool all, QString& log);
    void readIntegerRange(bool all, QString& log);
    /// Makes the value text with its unit the edit role, without a write, and returns it.
    QString showValueText();

    /// Writes the text by type and gives the fragment of the write, of one that the text did not allow too.
    Orvo::CAM_API_STATUS writeText(const QString& text, QString& fragment);
    Orvo::CAM_API_STATUS writeInteger(const QString& text, QString& fragment);
    Orvo::CAM_API_STATUS writeBoolean(const QString& text, QString& fragment);
    Orvo::CAM_API_STATUS writeCommand(const QString& text, QString& fragment);
    Orvo::CAM_API_STATUS writeFloat(const QString& text, QString& fragment);
    /// Notes the outcome of a write that was tried; `shownText` is the value text if it succeeded. Returns the status.
    Orvo::CAM_API_STATUS written(Orvo::CAM_API_STATUS status, const QString& shownText);
    void tellValuesWritten();

    [[nodiscard]] int opeLogLevel() const;
    /// Hands an entry to the view, the line that looks the node up in front; an empty one is none. It holds only what
    /// appendOpeLog let through, so that the level is looked at in one place.
    void sendOpeLog(const QString& log);
    void showChosenEntry();

    Orvo::CAM_API_STATUS m_lastStatus = Orvo::CAM_API_STS_SUCCESS; ///< of the last camera call
    NodeItemListener* m_listener = nullptr;                        ///< the view
    Orvo::CAM_HANDLE m_camHandle = 0;
    Node m_node;

    QPointer<QWidget> m_editor;
    int m_comboIndex = -1; ///< of the combo box when it was attached
};

// What a node item reads from its node when it is bound, and its lifetime in a model.

#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QPointer>
#include <QStandardItemModel>

namespace {

using namespace Orvo;

/// Every property differs from the initial value of an item.
scripted::NodeSpec fullNode()
{
    scripted::NodeSpec spec = floatNode(12.3456, "DeviceTemperature");
    spec.access = NODE_ACCESS_MODE_RO;
    spec.visibility = NODE_VISIBILITY_EXPERT;
    spec.description = "The <b>temperature</b>, %1";
    spec.toolTip = "Tip %1";
    spec.representation = NODE_REPRESENTATION_LINEAR;
    spec.unit = "C";
    spec.notation = FLOAT_DISPLAY_NOTATION_SCIENTIFIC;
    spec.precision = 3;
    spec.floatMin = -5;
    spec.floatMax = 95;
    spec.floatHasInc = 1;
    spec.floatInc = 0.5;
    return spec;
}

class NodeItemBindingTest : public QObject {
    Q_OBJECT

private slots:
    void emptyItem();
    void zeroHandleLeavesAClearedItem_data();
    void zeroHandleLeavesAClearedItem();
    void everyProperty();
    void itemRoles();
    void callsInOrder_data();
    void callsInOrder();
    void aFailureEndsTheCallSequence_data();
    void aFailureEndsTheCallSequence();
    void failureOfTheNotation_data();
    void failureOfTheNotation();
    void notations_data();
    void notations();
    void longNameAndTexts();
    void vanishedNode();
    void rebinding();
    void clearing();
    void widthIsEditedWithASlider();
    void exposureTimeIsLogarithmic();
    void setDataOfOtherRoles();
    void setDataOfTheEditRoleWrites();
    void itemIsDestroyedWithItsModel();
};

void compareCleared(const GenAPINodeItem& item)
{
    QCOMPARE(item.getNodeType(), NODE_TYPE_UNKNOWN);
    QCOMPARE(item.getNodeName(), QString());
    QCOMPARE(item.getAccessMode(), NODE_ACCESS_MODE_UNDEFINED);
    QCOMPARE(item.getDescription(), QString());
    QCOMPARE(item.getToolTip(), QString());
    QCOMPARE(item.getRepresentation(), NODE_REPRESENTATION_PURE_NUMBER);
    QCOMPARE(item.getHasIncFloat(), false);
    QCOMPARE(item.getIncFloat(), 0.0);
    QCOMPARE(item.getMaxFloat(), 0.0);
    QCOMPARE(item.getMinFloat(), 0.0);
    QCOMPARE(item.getIncInt(), 0L);
    QCOMPARE(item.getMaxInt(), 0L);
    QCOMPARE(item.getMinInt(), 0L);
    QCOMPARE(item.getTypeEditor(), EditorNone);
    QCOMPARE(item.getValueStr(1.2345), QString("1.23"));
    QCOMPARE(item.getValueStr(255L), QString("255"));
    QCOMPARE(item.getUserLevelAbbreviated(), QString("I"));
    QVERIFY(!item.isImplemented() && !item.isWritable() && !item.isEditable() && !item.isCategory());
}

void NodeItemBindingTest::emptyItem()
{
    GenAPINodeItem item(nullptr);
    compareCleared(item);
    QCOMPARE(item.getCamHandle(), 0UL);
    QCOMPARE(item.getNodeHandle(), 0UL);
    QCOMPARE(item.getBaseIndex(), -1);
    QVERIFY(!item.data(Qt::EditRole).isValid());

    // Every getter works without node and view.
    QCOMPARE(item.getNodeValue(true, true), QString());
    QCOMPARE(item.getValInt(false), 0L);
    QCOMPARE(item.getValFloat(false), 0.0);
    QCOMPARE(item.getEnumIntValue(), 0L);
    QCOMPARE(item.getItemsValue(), QStringList());
    QCOMPARE(item.getAdditionalInfo(), QString());
    QCOMPARE(item.setNodeValue(QString("1")), 2055);
    QCOMPARE(item.setNodeValue(1L), 13);
    QCOMPARE(item.setNodeValue(1.0), 13);
    item.updateVals(true);
    item.lineEdit_EditingFinished();
    item.combo_CurrentIndexChanged(1);
    compareCleared(item);

    QObject parent;
    const auto* owned = new GenAPINodeItem(&parent);
    QVERIFY(parent.children().contains(const_cast<GenAPINodeItem*>(owned)));
}

void NodeItemBindingTest::zeroHandleLeavesAClearedItem_data()
{
    QTest::addColumn<bool>("withCamera");
    QTest::addColumn<bool>("withNode");
    QTest::newRow("no camera") << false << true;
    QTest::newRow("no node") << true << false;
    QTest::newRow("neither") << false << false;
}

void NodeItemBindingTest::zeroHandleLeavesAClearedItem()
{
    QFETCH(bool, withCamera);
    QFETCH(bool, withNode);
    NodeBench bench({fullNode()});
    const CAM_HANDLE camera = withCamera ? bench.camera() : 0;
    const CAM_NODE_HANDLE node = withNode ? bench.handle("DeviceTemperature") : 0;
    scripted::clearCalls();
    GenAPINodeItem item(nullptr);
    QCOMPARE(item.setNode(camera, node, 7), 0);
    compareCleared(item);
    QCOMPARE(item.getCamHandle(), camera);
    QCOMPARE(item.getNodeHandle(), node);
    QCOMPARE(item.getBaseIndex(), 7);
    for (const int role : {2, 3, 259, 261})
        QVERIFY(!item.data(role).isValid());
    QCOMPARE(NodeBench::calls(), QStringList());
}

void NodeItemBindingTest::everyProperty()
{
    NodeBench bench({fullNode()});
    const CAM_NODE_HANDLE node = bench.handle("DeviceTemperature");
    GenAPINodeItem item(bench.camera(), node, 4, &bench.view, nullptr);
    QCOMPARE(item.getCamHandle(), bench.camera());
    QCOMPARE(item.getNodeHandle(), node);
    QCOMPARE(item.getBaseIndex(), 4);
    QCOMPARE(item.getNodeType(), NODE_TYPE_FLOAT);
    QCOMPARE(item.getNodeName(), QString("DeviceTemperature"));
    QCOMPARE(item.getAccessMode(), NODE_ACCESS_MODE_RO);
    QCOMPARE(item.getUserLevelAbbreviated(), QString("E"));
    QCOMPARE(item.getDescription(), QString("The <b>temperature</b>, %1"));
    QCOMPARE(item.getToolTip(), QString("Tip %1"));
    QCOMPARE(item.getRepresentation(), NODE_REPRESENTATION_LINEAR);
    QCOMPARE(item.getStrTypeNode(), QString("Float"));
    QCOMPARE(item.getTypeEditor(), EditorSlider);
    QCOMPARE(item.getValueStr(1234.56), QString("1.235e+03"));
    // The range is not read yet.
    QCOMPARE(item.getMinFloat(), 0.0);
    QCOMPARE(item.getMaxFloat(), 0.0);
    QVERIFY(!item.getHasIncFloat());
}

void NodeItemBindingTest::itemRoles()
{
    NodeBench bench({with(NODE_ACCESS_MODE_RW, fullNode())}); // writable, so that a write would be recorded
    GenAPINodeItem item(bench.camera(), bench.handle("DeviceTemperature"), 4, &bench.view, nullptr);
    QCOMPARE(item.data(2), QVariant(QString("1.235e+01 C")));
    QCOMPARE(item.data(3), QVariant(QString("Tip %1")));
    QCOMPARE(item.data(259), QVariant(3));
    QCOMPARE(item.data(261), QVariant(4));
    QVERIFY(!item.data(260).isValid() && !item.data(262).isValid());
    QCOMPARE(scripted::count("Nd_SetFloatValue"), 0);
}

void NodeItemBindingTest::callsInOrder_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QStringList>("after");
    QTest::newRow("integer") << 2 << QStringList{"Nd_GetIntValue"};
    QTest::newRow("float") << 5
                           << QStringList{"Nd_GetFloatDisplayNotation", "Nd_GetFloatDisplayPrecision",
                                          "Nd_GetFloatValue"};
    QTest::newRow("category") << 8 << QStringList();
}

void NodeItemBindingTest::callsInOrder()
{
    QFETCH(int, type);
    QFETCH(QStringList, after);
    NodeBench bench({nodeOf(static_cast<NodeType>(type))});
    const CAM_NODE_HANDLE node = bench.handle("Node");
    scripted::clearCalls();
    const GenAPINodeItem item(bench.camera(), node, 0, &bench.view, nullptr);
    QStringList expected{"Nd_GetType(out)",          "Nd_GetName(out, out)",         "Nd_GetAccessMode(out)",
                         "Nd_GetVisibility(out)",    "Nd_GetDescription(null, out)", "Nd_GetDescription(out, out)",
                         "Nd_GetToolTip(null, out)", "Nd_GetToolTip(out, out)",      "Nd_GetRepresentation(out)",
                         "Nd_GetUnit(null, out)",    "Nd_GetUnit(out, out)"};
    for (const QString& operation : after)
        expected << operation + "(out)";
    QCOMPARE(NodeBench::calls(), expected);
}

void NodeItemBindingTest::aFailureEndsTheCallSequence_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("nth");
    QTest::addColumn<int>("readCalls"); // of the sequence, including the failing one
    QTest::newRow("type") << "Nd_GetType" << 1 << 1;
    QTest::newRow("name") << "Nd_GetName" << 1 << 2;
    QTest::newRow("access mode") << "Nd_GetAccessMode" << 1 << 3;
    QTest::newRow("visibility") << "Nd_GetVisibility" << 1 << 4;
    QTest::newRow("size of the description") << "Nd_GetDescription" << 1 << 5;
    QTest::newRow("description") << "Nd_GetDescription" << 2 << 6;
    QTest::newRow("size of the tool tip") << "Nd_GetToolTip" << 1 << 7;
    QTest::newRow("tool tip") << "Nd_GetToolTip" << 2 << 8;
    QTest::newRow("representation") << "Nd_GetRepresentation" << 1 << 9;
    QTest::newRow("size of the unit") << "Nd_GetUnit" << 1 << 10;
    QTest::newRow("unit") << "Nd_GetUnit" << 2 << 11;
}

void NodeItemBindingTest::aFailureEndsTheCallSequence()
{
    QFETCH(QString, operation);
    QFETCH(int, nth);
    QFETCH(int, readCalls);
    NodeBench bench({fullNode()});
    const CAM_NODE_HANDLE node = bench.handle("DeviceTemperature");
    scripted::clearCalls();
    scripted::failCall(operation.toStdString(), CAM_API_STS_TIMEOUT, nth);
    GenAPINodeItem item(nullptr);
    QCOMPARE(item.setNode(bench.camera(), node, 4), 0);

    const bool typeRead = readCalls > 1;
    const bool accessRead = readCalls > 3;
    QCOMPARE(item.getNodeType(), typeRead ? NODE_TYPE_FLOAT : NODE_TYPE_UNKNOWN);
    QCOMPARE(item.getNodeName(), QString(readCalls > 2 ? "DeviceTemperature" : ""));
    QCOMPARE(item.getAccessMode(), accessRead ? NODE_ACCESS_MODE_RO : NODE_ACCESS_MODE_UNDEFINED);
    QCOMPARE(item.getUserLevelAbbreviated(), QString(readCalls > 4 ? "E" : "I"));
    QCOMPARE(item.getDescription(), readCalls > 6 ? QString("The <b>temperature</b>, %1") : QString());
    QCOMPARE(item.getToolTip(), readCalls > 8 ? QString("Tip %1") : QString());
    const bool representationRead = readCalls > 9;
    QCOMPARE(item.getRepresentation(),
             representationRead ? NODE_REPRESENTATION_LINEAR : NODE_REPRESENTATION_PURE_NUMBER);
    // The editor follows from what was read; the notation is not queried any more.
    QCOMPARE(item.getTypeEditor(), !typeRead ? EditorNone : representationRead ? EditorSlider : EditorLineEdit);
    QCOMPARE(item.getValueStr(1.2345), QString("1.23"));
    QCOMPARE(scripted::count("Nd_GetFloatDisplayNotation"), 0);
    QCOMPARE(scripted::count("Nd_GetFloatValue"), accessRead ? 1 : 0);
    QCOMPARE(NodeBench::calls().size(), readCalls + (accessRead ? 1 : 0));
    // The roles are filled nevertheless.
    QCOMPARE(item.data(Qt::EditRole), QVariant(accessRead ? QString("12.35") : QString()));
    QCOMPARE(item.data(EditorKindRole).toInt(), static_cast<int>(item.getTypeEditor()));
    QCOMPARE(item.data(Qt::ToolTipRole).toString(), item.getToolTip());
    QCOMPARE(item.data(FeatureView::ItemIndexRole), QVariant(4));
}

void NodeItemBindingTest::failureOfTheNotation_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("precisionCalls");
    QTest::newRow("notation") << "Nd_GetFloatDisplayNotation"
                              << "12.35" << 0;
    QTest::newRow("precision") << "Nd_GetFloatDisplayPrecision"
                               << "1.23e+01" << 1;
}

void NodeItemBindingTest::failureOfTheNotation()
{
    QFETCH(QString, operation);
    NodeBench bench({fullNode()});
    scripted::failAlways(operation.toStdString(), CAM_API_STS_GENICAM_ERR);
    GenAPINodeItem item(bench.camera(), bench.handle("DeviceTemperature"), 0, &bench.view, nullptr);
    QTEST(item.getNodeValue(false, false), "text");
    QTEST(scripted::count("Nd_GetFloatDisplayPrecision"), "precisionCalls");
}

void NodeItemBindingTest::notations_data()
{
    QTest::addColumn<int>("notation");
    QTest::addColumn<QString>("text");
    QTest::newRow("automatic") << 0 << "1.2e+03";
    QTest::newRow("fixed") << 1 << "1234.50";
    QTest::newRow("scientific") << 2 << "1.23e+03";
    QTest::newRow("unknown") << 3 << "1234.50";
    QTest::newRow("negative") << -1 << "1234.50";
}

void NodeItemBindingTest::notations()
{
    QFETCH(int, notation);
    scripted::NodeSpec spec = floatNode(1234.5);
    spec.notation = static_cast<FloatDisplayNotation>(notation);
    NodeBench bench({spec});
    const auto item = bench.item();
    QTEST(item->getNodeValue(false, false), "text");
    QTEST(item->getValueStr(1234.5), "text");
}

void NodeItemBindingTest::longNameAndTexts()
{
    scripted::NodeSpec spec = integerNode(1, std::string(255, 'n'));
    spec.description = std::string(65536, 'd') + "\xC3\xA4";
    spec.toolTip = std::string(65536, 't');
    spec.unit = "\xC2\xB5s";
    NodeBench bench({spec});
    const auto item = bench.item();
    QCOMPARE(item->getNodeName(), QString(255, 'n'));
    QCOMPARE(item->getDescription(), QString(65536, 'd') + QChar(0xE4));
    QCOMPARE(item->getToolTip(), QString(65536, 't'));
    QCOMPARE(item->getNodeValue(true, false), QString("1 ") + QChar(0xB5) + "s");

    NodeBench broken({fullNode()});
    scripted::failAlways("Nd_GetDescription", CAM_API_STS_SUCCESS); // returns success without a text
    const auto silent = broken.item();
    QCOMPARE(silent->getDescription(), QString());
    QCOMPARE(silent->getToolTip(), QString("Tip %1"));
}

void NodeItemBindingTest::vanishedNode()
{
    NodeBench bench({fullNode()});
    GenAPINodeItem item(bench.camera(), 999, 0, &bench.view, nullptr);
    QCOMPARE(item.getNodeType(), NODE_TYPE_UNKNOWN);
    QCOMPARE(item.getStrTypeNode(), QString("Unknown"));
    QCOMPARE(item.getTypeEditor(), EditorNone);
    QVERIFY(!item.isImplemented());
    QCOMPARE(item.data(EditorKindRole), QVariant(0));
}

void NodeItemBindingTest::rebinding()
{
    scripted::NodeSpec width = integerNode(640, "Width");
    width.intMin = 8;
    width.intMax = 1024;
    width.intInc = 8;
    NodeBench bench({width, nodeOf(NODE_TYPE_COMMAND, "Start")});
    const auto item = bench.item("Width");
    item->updateVals(true);
    QCOMPARE(item->getMaxInt(), 1024L);
    QCOMPARE(item->setNode(bench.camera(), bench.handle("Start"), 9), 0);
    QCOMPARE(item->getNodeName(), QString("Start"));
    QCOMPARE(item->getMaxInt(), 0L);
    QCOMPARE(item->getMinInt(), 0L);
    QCOMPARE(item->getIncInt(), 0L);
    QCOMPARE(item->getRepresentation(), NODE_REPRESENTATION_PURE_NUMBER);
    QCOMPARE(item->getValInt(false), 0L);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("== Command node ==")));
    QCOMPARE(item->data(EditorKindRole), QVariant(4));
    QCOMPARE(item->data(FeatureView::ItemIndexRole), QVariant(9));

    scripted::clearCalls();
    item->setNode(bench.camera(), bench.handle("Width"), 1);
    QCOMPARE(scripted::count("Nd_GetIntValue"), 1); // the cached text of the previous node is not used
    QCOMPARE(item->getValInt(false), 640L);
}

void NodeItemBindingTest::clearing()
{
    NodeBench bench({fullNode()});
    const auto item = bench.item();
    item->updateVals(true);
    item->clear();
    compareCleared(*item);
    QCOMPARE(item->getNodeHandle(), 0UL);
    QCOMPARE(item->getBaseIndex(), -1);
    QCOMPARE(item->getCamHandle(), bench.camera());
    QCOMPARE(item->data(Qt::ToolTipRole), QVariant(QString("Tip %1")));
    scripted::clearCalls();
    QCOMPARE(item->getValFloat(false), 0.0);
    QCOMPARE(NodeBench::calls(), QStringList());
}

void NodeItemBindingTest::widthIsEditedWithASlider()
{
    NodeBench bench({with(NODE_REPRESENTATION_HEX_NUMBER, integerNode(640, "Width")),
                     with(NODE_REPRESENTATION_HEX_NUMBER, integerNode(640, "Address"))});
    const auto width = bench.item("Width");
    QCOMPARE(width->getTypeEditor(), EditorSlider);
    QCOMPARE(width->getRepresentation(), NODE_REPRESENTATION_LINEAR);
    QCOMPARE(width->getNodeValue(false, false), QString("640"));
    const auto address = bench.item("Address");
    QCOMPARE(address->getTypeEditor(), EditorLineEdit);
    QCOMPARE(address->getNodeValue(false, false), QString("0x00000280"));
}

void NodeItemBindingTest::exposureTimeIsLogarithmic()
{
    NodeBench bench({with(NODE_REPRESENTATION_LINEAR, floatNode(100, "ExposureTime")),
                     with(NODE_REPRESENTATION_PURE_NUMBER, floatNode(1, "Gain"))});
    QCOMPARE(bench.item("ExposureTime")->getRepresentation(), NODE_REPRESENTATION_LOGARITHMIC);
    QCOMPARE(bench.item("Gain")->getRepresentation(), NODE_REPRESENTATION_LINEAR);
    QCOMPARE(bench.item("Gain")->getTypeEditor(), EditorSlider);
}

void NodeItemBindingTest::setDataOfOtherRoles()
{
    NodeBench bench({integerNode(5)});
    const auto item = bench.item();
    QStandardItemModel model;
    model.setItem(0, 0, item.get());
    for (const int role : {int{Qt::DisplayRole}, int{Qt::ToolTipRole}, int{Qt::BackgroundRole}, int{Qt::UserRole},
                           EditorKindRole, 262}) {
        item->setData(QVariant(role + 100), role);
        QCOMPARE(item->data(role), QVariant(role + 100));
        QVERIFY(model.setData(model.index(0, 0), QVariant(role + 200), role));
        QCOMPARE(item->data(role), QVariant(role + 200));
    }
    QCOMPARE(NodeBench::calls(), QStringList());
    model.takeItem(0, 0);
}

void NodeItemBindingTest::setDataOfTheEditRoleWrites()
{
    scripted::NodeSpec spec = integerNode(5);
    spec.unit = "px";
    NodeBench bench({spec, stringNode("old", "Text")});
    const auto item = bench.item("Node");
    QStandardItemModel model;
    model.setItem(0, 0, item.get());
    QVERIFY(model.setData(model.index(0, 0), QVariant(0x1F), Qt::EditRole));
    QCOMPARE(NodeBench::calls(), QStringList{"Nd_SetIntValue(31, true)"});
    QCOMPARE(model.data(model.index(0, 0), Qt::EditRole), QVariant(QString("31 px")));

    item->setData(QString("nonsense"), Qt::EditRole);
    QCOMPARE(NodeBench::calls().size(), 1);
    QCOMPARE(item->data(Qt::EditRole), QVariant(QString("31 px"))); // the item's own copy is not stored
    model.takeItem(0, 0);
}

void NodeItemBindingTest::itemIsDestroyedWithItsModel()
{
    NodeBench bench({integerNode(5)});
    auto item = bench.item();
    auto model = std::make_unique<QStandardItemModel>();
    const QPointer<GenAPINodeItem> kept = item.get();
    model->setItem(0, 2, item.release());
    QVERIFY(dynamic_cast<GenAPINodeItem*>(model->item(0, 2)) == kept.data());
    model.reset();
    QVERIFY(kept.isNull());
}

} // namespace

ORVO_TEST_CLASS(NodeItemBindingTest)
#include "NodeItemBindingTest.moc"

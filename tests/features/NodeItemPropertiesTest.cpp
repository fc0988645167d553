// What the properties of a node determine: editor, access, user level, valid numbers.

#include "tests/features/NodeBench.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <limits>

namespace {

using namespace Orvo;

class NodeItemPropertiesTest : public QObject {
    Q_OBJECT

private slots:
    void editors_data();
    void editors();
    void accessPredicates_data();
    void accessPredicates();
    void userLevels_data();
    void userLevels();
    void updateAccessMode();
    void updateAccessModeFails();
    void updateAccessModeOfNoNode();
    void validIntegersSnapInTheRangeOfTheNode();
    void validFloats_data();
    void validFloats();
};

void NodeItemPropertiesTest::editors_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("editor");
    const int editors[] = {0, 0, 1, 2, 4, 1, 1, 0, 0, 2, 0, 0, 0, 0};
    int type = 0;
    for (const int editor : editors) {
        QTest::addRow("type %d", type) << type << editor;
        ++type;
    }
}

void NodeItemPropertiesTest::editors()
{
    QFETCH(int, type);
    QFETCH(int, editor);
    NodeBench bench({nodeOf(static_cast<NodeType>(type))});
    const auto item = bench.item();
    QCOMPARE(static_cast<int>(item->getTypeEditor()), editor);
    QCOMPARE(item->data(EditorKindRole), QVariant(editor));
    QCOMPARE(item->getStrTypeNode(), NodeEditor::typeText(static_cast<NodeType>(type)));
    QCOMPARE(item->isCategory(), type == NODE_TYPE_CATEGORY);
}

void NodeItemPropertiesTest::accessPredicates_data()
{
    QTest::addColumn<int>("access");
    QTest::addColumn<bool>("implemented");
    QTest::addColumn<bool>("writable");
    QTest::addColumn<bool>("editable");
    QTest::newRow("not implemented") << 0 << false << false << false;
    QTest::newRow("not available") << 1 << true << false << false;
    QTest::newRow("write-only") << 2 << true << true << false;
    QTest::newRow("read-only") << 3 << true << false << false;
    QTest::newRow("read-write") << 4 << true << true << true;
    QTest::newRow("five") << 5 << false << false << false;
    QTest::newRow("not read") << 6 << false << false << false;
    QTest::newRow("negative") << -1 << false << false << false;
}

void NodeItemPropertiesTest::accessPredicates()
{
    QFETCH(int, access);
    NodeBench bench({with(static_cast<NodeAccessMode>(access), integerNode(1))});
    const auto item = bench.item();
    QCOMPARE(static_cast<int>(item->getAccessMode()), access);
    QTEST(item->isImplemented(), "implemented");
    QTEST(item->isWritable(), "writable");
    QTEST(item->isEditable(), "editable");
}

void NodeItemPropertiesTest::userLevels_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("visibility");
    QTest::addColumn<int>("access");
    QTest::addColumn<QString>("level");
    QTest::newRow("Beginner") << 2 << 0 << 4 << "B";
    QTest::newRow("Expert") << 2 << 1 << 3 << "E";
    QTest::newRow("Guru") << 2 << 2 << 2 << "G";
    QTest::newRow("Invisible") << 2 << 3 << 1 << "I";
    QTest::newRow("Beginner, not implemented") << 2 << 0 << 0 << "b";
    QTest::newRow("Expert, not implemented") << 4 << 1 << 0 << "e";
    QTest::newRow("Guru, not implemented") << 5 << 2 << 0 << "g";
    QTest::newRow("Invisible, not implemented") << 9 << 3 << 0 << "i";
    QTest::newRow("access not read") << 2 << 2 << 6 << "G";
    QTest::newRow("category") << 8 << 3 << 3 << "C";
    QTest::newRow("category, not implemented") << 8 << 0 << 0 << "C";
    QTest::newRow("unknown visibility") << 2 << 4 << 4 << "";
    QTest::newRow("unknown visibility, not implemented") << 2 << 4 << 0 << "";
    QTest::newRow("negative visibility") << 2 << -1 << 4 << "";
}

void NodeItemPropertiesTest::userLevels()
{
    QFETCH(int, type);
    QFETCH(int, visibility);
    QFETCH(int, access);
    scripted::NodeSpec spec = nodeOf(static_cast<NodeType>(type));
    spec.visibility = static_cast<TC_NODE_VISIBILITY>(visibility);
    spec.access = static_cast<NodeAccessMode>(access);
    NodeBench bench({spec});
    QTEST(bench.item()->getUserLevelAbbreviated(), "level");
}

void NodeItemPropertiesTest::updateAccessMode()
{
    NodeBench bench({integerNode(1)});
    const auto item = bench.item();
    bool changed = true;
    QCOMPARE(item->updateAccessMode(&changed), 0);
    QVERIFY(!changed);
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.access = NODE_ACCESS_MODE_RO; });
    QCOMPARE(item->updateAccessMode(&changed), 0);
    QVERIFY(changed);
    QCOMPARE(item->getAccessMode(), NODE_ACCESS_MODE_RO);
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.access = NODE_ACCESS_MODE_NA; });
    QCOMPARE(item->updateAccessMode(nullptr), 0);
    QCOMPARE(item->getAccessMode(), NODE_ACCESS_MODE_NA);
    QCOMPARE(NodeBench::calls(),
             QStringList({"Nd_GetAccessMode(out)", "Nd_GetAccessMode(out)", "Nd_GetAccessMode(out)"}));
}

void NodeItemPropertiesTest::updateAccessModeFails()
{
    NodeBench bench({integerNode(1)});
    const auto item = bench.item();
    scripted::changeNode("Node", [](scripted::NodeSpec& spec) { spec.access = NODE_ACCESS_MODE_RO; });
    scripted::failAlways("Nd_GetAccessMode", CAM_API_STS_CAMERA_NOT_RESPONDING);
    bool changed = true;
    QCOMPARE(item->updateAccessMode(&changed), 19);
    QVERIFY(!changed);
    QCOMPARE(item->getAccessMode(), NODE_ACCESS_MODE_RW);
}

void NodeItemPropertiesTest::updateAccessModeOfNoNode()
{
    NodeBench bench({integerNode(1)});
    GenAPINodeItem item(bench.camera(), 0, 0, &bench.view, nullptr);
    for (bool changed : {true, false}) {
        const bool before = changed;
        QCOMPARE(item.updateAccessMode(&changed), 21);
        QCOMPARE(changed, before);
    }
    QCOMPARE(scripted::count("Nd_GetAccessMode"), 0);
}

void NodeItemPropertiesTest::validIntegersSnapInTheRangeOfTheNode()
{
    scripted::NodeSpec spec = integerNode(0);
    spec.intMin = 1;
    spec.intMax = 10;
    spec.intInc = 4;
    NodeBench bench({spec});
    const auto item = bench.item();
    item->updateVals(true);
    QCOMPARE(item->getValidNodeValue(7L), 9L);
    QCOMPARE(item->getValidNodeValue(-3L), 1L);
    QCOMPARE(item->getValidNodeValue(12L), 10L);
}

void NodeItemPropertiesTest::validFloats_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::addColumn<double>("increment"); // NaN: none
    QTest::addColumn<double>("expected");
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    QTest::newRow("without increment inside") << 3.14159 << 0.0 << 10.0 << kNone << 3.14159;
    QTest::newRow("without increment below") << -1.0 << 0.0 << 10.0 << kNone << 0.0;
    QTest::newRow("without increment above") << 11.0 << 0.0 << 10.0 << kNone << 10.0;
    QTest::newRow("infinity") << kInfinity << 0.0 << 10.0 << kNone << 10.0;
    QTest::newRow("minus infinity") << -kInfinity << 0.0 << 10.0 << kNone << 0.0;
    QTest::newRow("rounds down") << 1.2 << 0.0 << 10.0 << 0.5 << 1.0;
    QTest::newRow("half goes up") << 1.25 << 0.0 << 10.0 << 0.5 << 1.5;
    QTest::newRow("steps count from the minimum") << 2.3 << 0.25 << 10.0 << 0.5 << 2.25;
    QTest::newRow("the maximum comes after rounding") << 9.9 << 0.0 << 9.75 << 0.5 << 9.75;
    QTest::newRow("increment 0 counts as 1") << 2.6 << 0.0 << 10.0 << 0.0 << 3.0;
    QTest::newRow("negative increment counts as 1") << 2.6 << 0.0 << 10.0 << -0.5 << 3.0;
    QTest::newRow("the last step of 32 bits") << 2147483647.0 << 0.0 << 1e12 << 1.0 << 2147483647.0;
    QTest::newRow("a step beyond 32 bits") << 2147483648.0 << 0.0 << 1e12 << 1.0 << -2147483648.0;
    QTest::newRow("far beyond 32 bits") << 1e12 << 100.0 << 1e12 << 0.5 << -2147483648.0 * 0.5 + 100.0;
    QTest::newRow("infinity in steps") << kInfinity << 0.0 << 10.0 << 1.0 << -2147483648.0;
    QTest::newRow("maximum below the minimum") << 7.0 << 5.0 << 3.0 << kNone << 3.0;
}

void NodeItemPropertiesTest::validFloats()
{
    QFETCH(double, value);
    QFETCH(double, minimum);
    QFETCH(double, maximum);
    QFETCH(double, increment);
    scripted::NodeSpec spec = floatNode(0);
    spec.floatMin = minimum;
    spec.floatMax = maximum;
    spec.floatHasInc = qIsNaN(increment) ? 0 : 1;
    spec.floatInc = increment;
    NodeBench bench({spec});
    const auto item = bench.item();
    item->updateVals(true);
    QTEST(item->getValidNodeValue(value), "expected");
    QCOMPARE(item->getValidNodeValue(std::numeric_limits<double>::quiet_NaN()), qMin(minimum, maximum));
}

} // namespace

ORVO_TEST_CLASS(NodeItemPropertiesTest)
#include "NodeItemPropertiesTest.moc"

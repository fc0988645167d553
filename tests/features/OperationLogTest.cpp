// The fragments of the operation log, byte for byte.

#include "features/item/OperationLog.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

namespace {

using OperationLog::Fragment;

class OperationLogTest : public QObject {
    Q_OBJECT

private slots:
    void fragments_data();
    void fragments();
    void arguments_data();
    void arguments();
    void argumentsAreNotExpanded();
    void preamble();
    void failureLines_data();
    void failureLines();
    void append_data();
    void append();
};

void OperationLogTest::fragments_data()
{
    QTest::addColumn<int>("fragment");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, Fragment fragment, const char* text) {
        QTest::newRow(name) << static_cast<int>(fragment) << QString(text);
    };
    row("integer read", Fragment::IntegerRead,
        "int64_t llVal = 0;\nstatus = Orvo::Nd_GetIntValue(hCam, hNode, &llVal);\n");
    row("float read", Fragment::FloatRead,
        "int64_t llVal = 0;\nstatus = Orvo::Nd_GetFloatValue(hCam, hNode, &llVal);\n");
    row("boolean read", Fragment::BooleanRead,
        "bool bVal = false;\nstatus = Orvo::Nd_GetBooltValue(hCam, hNode, &bVal);\n");
    row("enumeration integer read", Fragment::EnumIntegerRead,
        "int64_t llVal = 0;\nstatus = Orvo::Nd_GetEnumIntValuec(hCam, hNode, &llVal);\n");
    row("string read", Fragment::StringRead,
        "int len = 0\nchar *buf = NULL\nstatus = Orvo::Nd_GetStrValue(hCam, hNode, NULL, "
        "&len);\nif((Orvo::CAM_API_STS_SUCCESS == status) && (len > 0)){\n    buf = new char[len];\n    status = "
        "Orvo::Nd_GetStrValue(hCam, hNode, buf, &len);\n    if(Orvo::CAM_API_STS_SUCCESS == status){\n        ....;\n  "
        "  }\n    delete[] buf;\n    buf = NULL;\n}\n");
    row("enumeration read", Fragment::EnumRead,
        "int len = 0\nchar *buf = NULL\nstatus = Orvo::Nd_GetEnumStrValue(hCam, hNode, NULL, "
        "&len);\nif((Orvo::CAM_API_STS_SUCCESS == status) && (len > 0)){\n    buf = new char[len];\n    status = "
        "Orvo::Nd_GetEnumStrValue(hCam, hNode, buf, &len);\n    if(Orvo::CAM_API_STS_SUCCESS == status){\n        "
        "....;\n    }\n    delete[] buf;\n    buf = NULL;\n}\n");
    row("float maximum", Fragment::FloatMaximum,
        "double dMax = 0;\nstatus = Orvo::Nd_GetFloatMax(hCam, hNode, &dMax);\n");
    row("float minimum", Fragment::FloatMinimum,
        "double dMin = 0;\nstatus = Orvo::Nd_GetFloatMin(hCam, hNode, &dMin);\n");
    row("float has-increment", Fragment::FloatHasIncrement,
        "bool hasInc = 0;\nstatus = Orvo::Nd_GetFloatHasInc(hCam, hNode, &hasInc);\n");
    row("float increment", Fragment::FloatIncrement,
        "double dInc = 0;\nstatus = Orvo::Nd_GetFloatInc(hCam, hNode, &dInc);\n");
    row("integer maximum", Fragment::IntegerMaximum,
        "int64_t llMax = 0;\nstatus = Orvo::Nd_GetIntMax(hCam, hNode, &llMax);\n");
    row("integer minimum", Fragment::IntegerMinimum,
        "int64_t llMin = 0;\nstatus = Orvo::Nd_GetIntMin(hCam, hNode, &llMin);\n");
    row("integer increment", Fragment::IntegerIncrement,
        "int64_t llInc = 0;\nstatus = Orvo::Nd_GetIntInc(hCam, hNode, &llInc);\n");
    row("command execution", Fragment::CommandExecution, "status = Orvo::Nd_CmdExecute'hCam, hNode);\n");
    row("preamble, status variable", Fragment::PreambleStatus,
        "Orvo::CAM_API_STATUS status = Orvo::CAM_API_STS_SUCCESS;\n");
    row("preamble, camera", Fragment::PreambleCamera,
        "Orvo::CAM_HANDLE hCam = NULL;\nstatus = Orvo::Cam_Open( camIndex, &hCam, .... );\n");
    row("preamble, node variable", Fragment::PreambleNode, "Orvo::CAM_NODE_HANDLE hNode = NULL;\n");
}

void OperationLogTest::fragments()
{
    QFETCH(int, fragment);
    QTEST(OperationLog::text(static_cast<Fragment>(fragment)), "text");
}

void OperationLogTest::arguments_data()
{
    QTest::addColumn<int>("fragment");
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, Fragment fragment, const char* argument, const char* text) {
        QTest::newRow(name) << static_cast<int>(fragment) << QString(argument) << QString(text);
    };
    row("node lookup", Fragment::NodeLookup, "Gain", "status = Orvo::Nd_GetNode(hCam, \"Gain\", &hNode);\n");
    row("integer write", Fragment::IntegerWrite, "5", "status = Orvo::Nd_SetIntValue(hcam, hNode, 5);\n");
    row("enumeration integer write", Fragment::EnumIntegerWrite, "-2",
        "status = Orvo::Nd_SetEnumIntValue(hCam, hNode, -2);\n");
    row("float write", Fragment::FloatWrite, "1.5", "status = Orvo::Nd_SetFloatValue(hCam, hNode, 1.5);\n");
    row("boolean write", Fragment::BooleanWrite, "true", "status = Orvo::Nd_SetBoolValue(hCam, hNode, true);\n");
    row("string write", Fragment::StringWrite, "text", "status = Orvo::Nd_SetStrValue(hCam, hNode, \"text\");\n");
    row("enumeration write", Fragment::EnumWrite, "Mono8",
        "status = Orvo::Nd_SetEnumStrValue(hCam, hNode, \"Mono8\");\n");
}

void OperationLogTest::arguments()
{
    QFETCH(int, fragment);
    QFETCH(QString, argument);
    QTEST(OperationLog::text(static_cast<Fragment>(fragment), argument), "text");
}

void OperationLogTest::argumentsAreNotExpanded()
{
    QCOMPARE(OperationLog::text(Fragment::StringWrite, "%1 <b>%2</b>\n"),
             QString("status = Orvo::Nd_SetStrValue(hCam, hNode, \"%1 <b>%2</b>\n\");\n"));
}

void OperationLogTest::preamble()
{
    QCOMPARE(OperationLog::preamble(),
             QString("Orvo::CAM_API_STATUS status = Orvo::CAM_API_STS_SUCCESS;\n"
                     "Orvo::CAM_HANDLE hCam = NULL;\nstatus = Orvo::Cam_Open( camIndex, &hCam, .... );\n"
                     "Orvo::CAM_NODE_HANDLE hNode = NULL;\n"));
}

void OperationLogTest::failureLines_data()
{
    QTest::addColumn<uint>("status");
    QTest::addColumn<QString>("line");
    QTest::newRow("16") << 16U << "Failed!! Status code: 0x00000010.\n";
    QTest::newRow("lower case") << 0xABCDU << "Failed!! Status code: 0x0000abcd.\n";
    QTest::newRow("unsigned") << 0xFFFFFFFFU << "Failed!! Status code: 0xffffffff.\n";
}

void OperationLogTest::failureLines()
{
    QFETCH(uint, status);
    QTEST(OperationLog::failureLine(status), "line");
}

void OperationLogTest::append_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("appended");
    for (int level = 0; level <= 3; ++level) {
        for (const OperationLogMode mode : {OpeLogWrite, OpeLogRead, OpeLogRange})
            QTest::addRow("level %d, mode %d", level, mode) << level << static_cast<int>(mode) << (level >= mode);
    }
}

void OperationLogTest::append()
{
    QFETCH(int, level);
    QFETCH(int, mode);
    QFETCH(bool, appended);
    QString log = "before\n";
    OperationLog::append(log, "fragment\n", level, static_cast<OperationLogMode>(mode), 0);
    QCOMPARE(log, QString(appended ? "before\nfragment\n" : "before\n"));

    log = "before\n";
    OperationLog::append(log, "fragment\n", level, static_cast<OperationLogMode>(mode), 13);
    QCOMPARE(log, QString(appended ? "before\nfragment\nFailed!! Status code: 0x0000000d.\n" : "before\n"));

    log.clear();
    OperationLog::append(log, {}, level, static_cast<OperationLogMode>(mode), 13);
    QCOMPARE(log, QString(appended ? "Failed!! Status code: 0x0000000d.\n" : ""));
}

} // namespace

ORVO_TEST_CLASS(OperationLogTest)
#include "OperationLogTest.moc"

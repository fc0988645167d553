// What the feature browser does when the stream starts and stops.

#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"
#include "tests/support/FeatureHand.h"
#include "tests/support/Patience.h"
#include "tests/support/Recorded.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QLineEdit>

using scripted::NodeSpec;

namespace {

class StreamFeaturesTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void everyFeatureIsUpdated_data();
    void everyFeatureIsUpdated();
    void startCommitsTheOpenEditorFirst();
};

const GenAPINodeItem* itemOf(WindowDriver& driver, const QString& name)
{
    for (const GenAPINodeItem* const item : driver.window().findChild<FeatureView*>()->items()) {
        if (item->getNodeName() == name)
            return item;
    }
    qFatal("no item %s", qPrintable(name));
    return nullptr;
}

void StreamFeaturesTest::everyFeatureIsUpdated_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QByteArray>("operation");
    QTest::addColumn<QByteArray>("before");
    QTest::newRow("start") << QByteArray("actionStart") << QByteArray("Strm_Start") << QByteArray("GetCamTriggerMode");
    QTest::newRow("stop") << QByteArray("actionStop") << QByteArray("Strm_Stop") << QByteArray("Strm_Close");
}

void StreamFeaturesTest::everyFeatureIsUpdated()
{
    QFETCH(const QByteArray, action);
    QFETCH(const QByteArray, operation);
    QFETCH(const QByteArray, before);
    WindowDriver driver;
    driver.open();
    if (action == "actionStop")
        driver.start();
    scripted::onCall(operation.toStdString(), [] {
        scripted::changeNode("BlackLevel", [](NodeSpec& node) { node.intValue = 99; });
        scripted::changeNode("Gain", [](NodeSpec& node) { node.access = Orvo::NODE_ACCESS_MODE_RO; });
    });
    scripted::clearCalls();
    driver.trigger(action);
    QCOMPARE(itemOf(driver, "BlackLevel")->text(), QString("99"));
    QCOMPARE(itemOf(driver, "Gain")->getAccessMode(), Orvo::NODE_ACCESS_MODE_RO);

    QStringList read = recorded::texts({"Nd_GetAccessMode"});
    QCOMPARE(read.size(), driver.window().findChild<FeatureView*>()->items().size());
    QCOMPARE(read.removeDuplicates(), 0);
    const QStringList made = recorded::operations();
    QVERIFY(made.contains(before));
    QVERIFY(made.indexOf(QRegularExpression("^Nd_.*")) > made.indexOf(before));
}

void StreamFeaturesTest::startCommitsTheOpenEditorFirst()
{
    WindowDriver driver;
    driver.open();
    // The editor writes when it loses the focus, so it must have the focus first.
    driver.window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&driver.window(), kPatienceMs));
    const QPointer<QLineEdit> editor =
        qobject_cast<QLineEdit*>(FeatureHand(driver.window()).clickValue("DeviceUserID"));
    QVERIFY(editor);
    QTest::keyClicks(editor, "bench 3");
    scripted::clearCalls();
    driver.start();
    QCOMPARE(scripted::node("DeviceUserID").strValue, std::string("bench 3"));

    // The write precedes the first read of any other feature.
    const QString own = QString::number(itemOf(driver, "DeviceUserID")->getNodeHandle());
    const QStringList made = recorded::texts({"Nd_"});
    const int written = made.indexOf(QRegularExpression("^Nd_SetStrValue.*"));
    const int othersRead = made.indexOf(QRegularExpression(QString("^Nd_GetAccessMode\\(\\d+, (?!%1,).*").arg(own)));
    QVERIFY(written >= 0);
    QVERIFY(othersRead > written);
    QTRY_VERIFY(!editor);
}

} // namespace

ORVO_TEST_CLASS(StreamFeaturesTest)
#include "StreamFeaturesTest.moc"

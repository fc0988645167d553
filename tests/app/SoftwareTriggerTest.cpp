// When the software trigger is enabled, and what it does.

#include "features/view/FeatureView.h"
#include "tests/support/Recorded.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

namespace {

class SoftwareTriggerTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void isOfferedInTriggerMode_data();
    void isOfferedInTriggerMode();
    void isDisabledWhenTheStreamStops();
    void isDisabledWithoutAStream();
    void followsTheFeatureBrowser();
    void executes_data();
    void executes();
    void fails();
};

void SoftwareTriggerTest::isOfferedInTriggerMode_data()
{
    QTest::addColumn<quint8>("mode");
    QTest::addColumn<quint32>("source");
    QTest::addColumn<QString>("failing");
    QTest::addColumn<bool>("offered");
    QTest::newRow("software") << quint8{1} << 64u << "" << true;
    QTest::newRow("another byte than 1") << quint8{2} << 64u << "" << true;
    QTest::newRow("another source") << quint8{1} << 1u << "" << false;
    QTest::newRow("mode off") << quint8{0} << 64u << "" << false;
    QTest::newRow("mode unreadable") << quint8{1} << 64u << "GetCamTriggerMode" << false;
    QTest::newRow("source unreadable") << quint8{1} << 64u << "GetCamTriggerSource" << false;
}

void SoftwareTriggerTest::isOfferedInTriggerMode()
{
    QFETCH(quint8, mode);
    QFETCH(quint32, source);
    QFETCH(QString, failing);
    QFETCH(bool, offered);
    WindowDriver driver;
    scripted::setTrigger(mode, source);
    if (!failing.isEmpty())
        scripted::failAlways(failing.toStdString(), Orvo::CAM_API_STS_TIMEOUT);
    driver.open();
    QVERIFY(!driver.enabled("actionSoftwareTrigger"));
    QVERIFY(!driver.enabled("action_Menu_One_Shot"));
    driver.start();
    QCOMPARE(driver.enabled("actionSoftwareTrigger"), offered);
    QCOMPARE(driver.enabled("action_Menu_One_Shot"), offered);
    QCOMPARE(driver.log(), QStringList());
}

void SoftwareTriggerTest::isDisabledWhenTheStreamStops()
{
    WindowDriver driver;
    scripted::setTrigger(1, 64);
    driver.open();
    driver.start();
    driver.stop();
    QVERIFY(!driver.enabled("actionSoftwareTrigger"));
    QVERIFY(!driver.enabled("action_Menu_One_Shot"));
}

void SoftwareTriggerTest::isDisabledWithoutAStream()
{
    WindowDriver driver;
    scripted::setTrigger(1, 64);
    const auto check = [&] {
        driver.action("actionSoftwareTrigger")->setEnabled(true);
        driver.action("action_Menu_One_Shot")->setEnabled(true);
        QVERIFY(QMetaObject::invokeMethod(&driver.window(), "check_software_trigger_mode"));
        QVERIFY(!driver.enabled("actionSoftwareTrigger"));
        QVERIFY(!driver.enabled("action_Menu_One_Shot"));
    };
    check(); // no camera
    driver.open();
    check();
    QCOMPARE(recorded::texts({"GetCamTrigger"}), QStringList()); // without reading anything
}

void SoftwareTriggerTest::followsTheFeatureBrowser()
{
    WindowDriver driver;
    driver.open();
    driver.start();
    auto* const features = driver.window().findChild<FeatureView*>();
    QVERIFY(features);
    scripted::setTrigger(1, 64);
    emit features->checkSoftwareTriggerMode();
    QVERIFY(driver.enabled("actionSoftwareTrigger"));
    QVERIFY(driver.enabled("action_Menu_One_Shot"));
    scripted::setTrigger(0, 64);
    emit features->checkSoftwareTriggerMode();
    QVERIFY(!driver.enabled("actionSoftwareTrigger"));
    QVERIFY(!driver.enabled("action_Menu_One_Shot"));
}

void SoftwareTriggerTest::executes_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::newRow("tool bar") << QByteArray("actionSoftwareTrigger");
    QTest::newRow("menu") << QByteArray("action_Menu_One_Shot");
}

void SoftwareTriggerTest::executes()
{
    QFETCH(QByteArray, action);
    WindowDriver driver;
    driver.triggerDisabled(action);
    QCOMPARE(scripted::count("ExecuteCamSoftwareTrigger"), 0); // no camera
    scripted::setTrigger(1, 64);
    driver.open();
    driver.start();
    driver.trigger(action);
    QCOMPARE(scripted::count("ExecuteCamSoftwareTrigger"), 1);
}

void SoftwareTriggerTest::fails()
{
    WindowDriver driver;
    scripted::setTrigger(1, 64);
    driver.open();
    driver.start();
    scripted::failCall("ExecuteCamSoftwareTrigger", Orvo::CAM_API_STS_NOT_WRITABLE);
    driver.trigger("actionSoftwareTrigger");
    QCOMPARE(driver.log(), QStringList{"ERROR: Error execute S/W trigger. [CAM_API_STS_NOT_WRITABLE]"});
}

} // namespace

ORVO_TEST_CLASS(SoftwareTriggerTest)
#include "SoftwareTriggerTest.moc"

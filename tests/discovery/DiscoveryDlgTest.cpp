// The discovery dialog: its form, when it enumerates cameras, what it lists, and what it returns.

#include "discovery/DiscoveryDlg.h"
#include "tests/support/Patience.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"

#include <QtTest>

#include <QLayout>
#include <QPushButton>
#include <QTreeWidget>

namespace {

/// A dialog and its widgets.
struct Shown {
    DiscoveryDlg dialog;
    QPushButton* update = dialog.findChild<QPushButton*>("PushButtonUpateCameraList");
    QPushButton* cancel = dialog.findChild<QPushButton*>("cancelButton");
    QPushButton* open = dialog.findChild<QPushButton*>("openButton");
    QTreeWidget* list = dialog.findChild<QTreeWidget*>("discoveryWidget");
    QSignalSpy errors{&dialog, &DiscoveryDlg::setError};
    QSignalSpy lines{&dialog, &DiscoveryDlg::writeLog};

    /// The cells of the row, including the hidden one.
    [[nodiscard]] QStringList row(int index) const
    {
        QStringList cells;
        for (int column = 0; column < list->columnCount(); ++column)
            cells << list->topLevelItem(index)->text(column);
        return cells;
    }

    void click(int index, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        const QRect cell = list->visualItemRect(list->topLevelItem(index));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, modifiers, QPoint(10, cell.center().y()));
    }

    void doubleClick(int index) const
    {
        click(index);
        const QRect cell = list->visualItemRect(list->topLevelItem(index));
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, QPoint(10, cell.center().y()));
    }

    /// Sends the key to the widget that has the focus.
    void press(Qt::Key key)
    {
        QWidget* const focused = dialog.focusWidget();
        QTest::keyClick(focused ? focused : &dialog, key);
    }

    /// Presses Tab until the button has the focus.
    [[nodiscard]] bool tabTo(const QPushButton& button)
    {
        constexpr int kWidgets = 4;
        for (int i = 0; i < kWidgets && !button.hasFocus(); ++i)
            press(Qt::Key_Tab);
        return button.hasFocus();
    }
};

/// Shows the dialog and waits until it is the active window with its list filled.
bool waitUntilReady(Shown& shown)
{
    shown.dialog.show();
    QApplication::setActiveWindow(&shown.dialog);
    return QTest::qWaitForWindowActive(&shown.dialog, kPatienceMs) &&
           QTest::qWaitFor([&] { return shown.update->isEnabled(); }, kPatienceMs);
}

std::vector<scripted::CameraSpec> threeCameras()
{
    return {
        {"Maker A", "Model 1", "S-1", "left"}, {"Maker B", "Model 2", "S-2", ""}, {"Maker C", "Model 3", "S-3", "top"}};
}

/// Waits `count` times as long as the dialog waits before it lists the cameras. It uses the same kind of timer, so the
/// two fire in turn however busy the machine is.
[[nodiscard]] bool waitForPeriods(int count)
{
    QTimer timer;
    int periods = 0;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++periods; });
    timer.start(100);
    return QTest::qWaitFor([&] { return periods >= count; }, kPatienceMs);
}

class DiscoveryDlgTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<CAM_API_STATUS>("CAM_API_STATUS"); } // for the signal spy
    void init()
    {
        scripted::reset();
        scripted::setCameras(threeCameras());
        QCOMPARE(Orvo::Sys_Initialize(65535), Orvo::CAM_API_STS_SUCCESS);
    }

    void formHasItsWidgets_data();
    void formHasItsWidgets();
    void formWidgetsAreInOrderWithoutALayout();
    void columns();
    void membersAreKnownByName();

    void listIsFilledAfterTheDialogIsShown();
    void listIsFilledOnce();
    void hidingAndShowingBeforeTheListIsFilledFillsItOnce();
    void showingTheDialogAgainRefillsTheList();
    void threeCamerasInIndexOrder();
    void textsAreShownVerbatim();
    void everyByteOfAFieldIsACharacter();
    void noCamera();
    void buttonsAreDisabledWhileEnumerating();

    void openReturnsTheFirstRow();
    void openReturnsTheSelectedRow();
    void indexIsReadFromTheHiddenColumn();
    void clearedSelectionKeepsTheIndexAndDoesNotOpen();
    void noSelectionLeavesTheArgumentUnchanged();
    void enterOpensTheHighlightedRow_data();
    void enterOpensTheHighlightedRow();
    void enterDoesNothingBeforeTheListIsFilled();
    void enterPressesTheFocusedButton_data();
    void enterPressesTheFocusedButton();
    void updateKeepsTheFocus();
    void doubleClickOpens();
    void doubleClickDoesNothingWhileOpenIsDisabled();
    void rejected_data();
    void rejected();

    void updateClearsTheListBeforeEnumerating();
    void updateRefillsTheList();
    void countFailsAfterAClick();
    void countFailsAfterTheTimer();
    void recordFails_data();
    void recordFails();
};

// --- Form -----------------------------------------------------------------------------------------------------------

void DiscoveryDlgTest::formHasItsWidgets_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QRect>("geometry");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("PushButtonUpateCameraList")
        << "QPushButton" << QRect(60, 230, 161, 31) << "Update Camera List" << true;
    QTest::newRow("cancelButton") << "QPushButton" << QRect(410, 230, 91, 31) << "Cancel" << true;
    QTest::newRow("openButton") << "QPushButton" << QRect(270, 230, 91, 31) << "Open" << false;
    QTest::newRow("discoveryWidget") << "QTreeWidget" << QRect(20, 20, 610, 161) << "" << true;
}

void DiscoveryDlgTest::formHasItsWidgets()
{
    QFETCH(QString, className);
    QFETCH(QRect, geometry);
    QFETCH(QString, text);
    QFETCH(bool, enabled);
    const DiscoveryDlg dialog;
    const auto* widget = dialog.findChild<QWidget*>(QTest::currentDataTag(), Qt::FindDirectChildrenOnly);
    QVERIFY(widget);
    QCOMPARE(QString(widget->metaObject()->className()), className);
    QCOMPARE(widget->geometry(), geometry);
    QCOMPARE(widget->property("text").toString(), text);
    QCOMPARE(widget->isEnabled(), enabled);
    QCOMPARE(widget->toolTip(), QString());
}

void DiscoveryDlgTest::formWidgetsAreInOrderWithoutALayout()
{
    const Shown shown;
    QStringList names;
    for (const QObject* child : shown.dialog.children()) {
        if (child->isWidgetType())
            names << child->objectName();
    }
    QCOMPARE(names, (QStringList{"PushButtonUpateCameraList", "cancelButton", "openButton", "discoveryWidget"}));
    QVERIFY(!shown.dialog.layout());
    QCOMPARE(shown.dialog.objectName(), QString("DiscoveryDlg"));
    QCOMPARE(shown.dialog.windowTitle(), QString("Select a Camera"));
    QCOMPARE(shown.dialog.size(), QSize(641, 286));
    QCOMPARE(shown.list->topLevelItemCount(), 0);
    QCOMPARE(shown.dialog.current_device, 0U);
}

void DiscoveryDlgTest::columns()
{
    Shown shown;
    shown.dialog.show();
    const QTreeWidget& list = *shown.list;
    QCOMPARE(list.columnCount(), 5);
    QStringList headers;
    for (int column = 0; column < 4; ++column)
        headers << list.headerItem()->text(column);
    QCOMPARE(headers, (QStringList{"VendorName", "ModelName", "SerialNo", "UserDefinedName"}));
    QCOMPARE(list.columnWidth(0), 140);
    QCOMPARE(list.columnWidth(1), 140);
    QCOMPARE(list.columnWidth(2), 80);
    for (int column = 0; column < 4; ++column)
        QVERIFY(!list.isColumnHidden(column));
    QVERIFY(list.isColumnHidden(4));
    QVERIFY2(list.columnWidth(3) > 200, "the last visible column stretches");
}

void DiscoveryDlgTest::membersAreKnownByName()
{
    const QMetaObject& meta = DiscoveryDlg::staticMetaObject;
    const QStringList wanted = {"setError(CAM_API_STATUS,QString)",
                                "writeLog(QString)",
                                "discovery_camera()",
                                "open_camera()",
                                "get_current_device(uint32_t*)",
                                "on_discoveryWidget_itemSelectionChanged()"};
    QStringList own;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        own << meta.method(i).methodSignature();
    QCOMPARE(own, wanted);
    QCOMPARE(meta.method(meta.methodOffset()).parameterNames(), (QList<QByteArray>{"status", "title_str"}));
    QCOMPARE(meta.method(meta.methodOffset() + 1).parameterNames(), (QList<QByteArray>{"wstring"}));
}

// --- Listing --------------------------------------------------------------------------------------------------------

void DiscoveryDlgTest::listIsFilledAfterTheDialogIsShown()
{
    constexpr qint64 kEarliestMs = 90; // a coarse timer of 100 ms may fire early
    Shown shown;
    QElapsedTimer sinceShown;
    qint64 askedAfterMs = -1;
    scripted::onCall("Sys_GetNumOfCameras", [&] { askedAfterMs = sinceShown.elapsed(); });
    sinceShown.start();
    shown.dialog.show();
    QVERIFY(!shown.update->isEnabled());
    QVERIFY(!shown.open->isEnabled());
    QCOMPARE(scripted::count("Sys_GetNumOfCameras"), 0);
    QTRY_COMPARE(shown.list->topLevelItemCount(), 3);
    QVERIFY2(askedAfterMs >= kEarliestMs, qPrintable(QString::number(askedAfterMs)));
    QVERIFY(shown.update->isEnabled());
}

void DiscoveryDlgTest::listIsFilledOnce()
{
    Shown shown;
    shown.dialog.show();
    QVERIFY(waitForPeriods(3));
    QCOMPARE(scripted::count("Sys_GetNumOfCameras"), 1);
}

void DiscoveryDlgTest::hidingAndShowingBeforeTheListIsFilledFillsItOnce()
{
    Shown shown;
    shown.dialog.show();
    shown.dialog.hide();
    shown.dialog.show();
    QVERIFY(waitForPeriods(3));
    QCOMPARE(scripted::count("Sys_GetNumOfCameras"), 1);
}

void DiscoveryDlgTest::showingTheDialogAgainRefillsTheList()
{
    Shown shown;
    shown.dialog.show();
    QTRY_COMPARE(shown.list->topLevelItemCount(), 3);
    shown.dialog.hide();
    scripted::setCameras({{}});
    shown.dialog.show();
    QVERIFY(!shown.update->isEnabled());
    QTRY_COMPARE(shown.list->topLevelItemCount(), 1);
    QVERIFY(shown.update->isEnabled());
}

void DiscoveryDlgTest::threeCamerasInIndexOrder()
{
    Shown shown;
    shown.dialog.discovery_camera();
    QCOMPARE(shown.list->topLevelItemCount(), 3);
    QCOMPARE(shown.row(0), (QStringList{"Maker A", "Model 1", "S-1", "left", "0"}));
    QCOMPARE(shown.row(1), (QStringList{"Maker B", "Model 2", "S-2", "", "1"}));
    QCOMPARE(shown.row(2), (QStringList{"Maker C", "Model 3", "S-3", "top", "2"}));
    QCOMPARE(shown.list->currentItem(), shown.list->topLevelItem(0));
    QCOMPARE(shown.list->selectedItems(), (QList<QTreeWidgetItem*>{shown.list->topLevelItem(0)}));
    QVERIFY(shown.open->isEnabled());
    QVERIFY(shown.update->isEnabled());

    QStringList asked;
    for (const scripted::Call& call : scripted::calls({"Sys_GetNum", "Cam_"}))
        asked << QString::fromStdString(call.text());
    QCOMPARE(asked, (QStringList{"Sys_GetNumOfCameras(out)", "Cam_GetInformation(0, 0, out)",
                                 "Cam_GetInformation(0, 1, out)", "Cam_GetInformation(0, 2, out)"}));
    QCOMPARE(shown.errors.count(), 0);
    QCOMPARE(shown.lines.count(), 0);
}

void DiscoveryDlgTest::textsAreShownVerbatim()
{
    const std::string longest(63, 'x');
    scripted::setCameras({{longest, "<b>bold</b>", "%1 %2", "&name"}});
    Shown shown;
    shown.dialog.discovery_camera();
    QCOMPARE(shown.row(0), (QStringList{QString::fromStdString(longest), "<b>bold</b>", "%1 %2", "&name", "0"}));
}

void DiscoveryDlgTest::everyByteOfAFieldIsACharacter()
{
    scripted::setCameras({{"", std::string("one\0two", 7), "", "G\xE9\xC3\xA9"}});
    Shown shown;
    shown.dialog.discovery_camera();
    QCOMPARE(shown.row(0), (QStringList{"", "one", "", QString("G") + QChar(0xE9) + QChar(0xC3) + QChar(0xA9), "0"}));
}

void DiscoveryDlgTest::noCamera()
{
    scripted::setCameras({});
    Shown shown;
    shown.dialog.discovery_camera();
    QCOMPARE(shown.list->topLevelItemCount(), 0);
    QVERIFY(shown.update->isEnabled());
    QVERIFY(!shown.open->isEnabled());
    QCOMPARE(shown.errors.count(), 0);
    QCOMPARE(scripted::count("Cam_GetInformation"), 0);
}

void DiscoveryDlgTest::buttonsAreDisabledWhileEnumerating()
{
    Shown shown;
    shown.dialog.discovery_camera();
    bool anyEnabled = false;
    const auto look = [&] { anyEnabled = anyEnabled || shown.update->isEnabled() || shown.open->isEnabled(); };
    scripted::onCall("Sys_GetNumOfCameras", look);
    scripted::onCall("Cam_GetInformation", look);
    QTest::mouseClick(shown.update, Qt::LeftButton);
    QVERIFY(!anyEnabled);
    QCOMPARE(scripted::count("Cam_GetInformation"), 6);
    QVERIFY(shown.update->isEnabled());
    QVERIFY(shown.open->isEnabled());
}

// --- Choosing -------------------------------------------------------------------------------------------------------

void DiscoveryDlgTest::openReturnsTheFirstRow()
{
    Shown shown;
    QTimer::singleShot(0, &shown.dialog, [&] {
        QTRY_VERIFY(shown.open->isEnabled());
        shown.open->click();
    });
    QCOMPARE(shown.dialog.exec(), int(QDialog::Accepted));
    QCOMPARE(shown.dialog.current_device, 0U);
}

void DiscoveryDlgTest::openReturnsTheSelectedRow()
{
    Shown shown;
    shown.dialog.show();
    QTRY_VERIFY(shown.open->isEnabled());
    shown.click(2);
    QCOMPARE(shown.dialog.current_device, 2U);
    shown.open->click();
    QCOMPARE(shown.dialog.result(), int(QDialog::Accepted));
    QVERIFY(!shown.dialog.isVisible());
    QCOMPARE(shown.dialog.current_device, 2U);
}

void DiscoveryDlgTest::indexIsReadFromTheHiddenColumn()
{
    Shown shown;
    shown.dialog.discovery_camera();
    shown.list->topLevelItem(2)->setText(4, "17");
    shown.list->setCurrentItem(shown.list->topLevelItem(2));
    QCOMPARE(shown.dialog.current_device, 17U);
    std::uint32_t index = 0;
    QVERIFY(shown.dialog.get_current_device(&index));
    QCOMPARE(index, 17U);
}

void DiscoveryDlgTest::clearedSelectionKeepsTheIndexAndDoesNotOpen()
{
    Shown shown;
    shown.dialog.show();
    QTRY_VERIFY(shown.open->isEnabled());
    shown.click(1);
    QCOMPARE(shown.dialog.current_device, 1U);
    shown.click(1, Qt::ControlModifier);
    QVERIFY(shown.list->selectedItems().isEmpty());
    QCOMPARE(shown.dialog.current_device, 1U);
    QVERIFY(shown.open->isEnabled());
    shown.open->click();
    QVERIFY(shown.dialog.isVisible());
    QCOMPARE(shown.errors.count(), 0);
}

void DiscoveryDlgTest::noSelectionLeavesTheArgumentUnchanged()
{
    Shown shown;
    std::uint32_t index = 99;
    QVERIFY(!shown.dialog.get_current_device(&index));
    QCOMPARE(index, 99U);
}

void DiscoveryDlgTest::enterOpensTheHighlightedRow_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<bool>("updated");
    QTest::newRow("Return") << Qt::Key_Return << false;
    QTest::newRow("Enter") << Qt::Key_Enter << false;
    QTest::newRow("after a click on the update button") << Qt::Key_Return << true;
}

void DiscoveryDlgTest::enterOpensTheHighlightedRow()
{
    QFETCH(const Qt::Key, key);
    QFETCH(const bool, updated);
    Shown shown;
    QVERIFY(waitUntilReady(shown));
    if (updated)
        QTest::mouseClick(shown.update, Qt::LeftButton);
    shown.press(Qt::Key_Down);
    QVERIFY(shown.list->topLevelItem(1)->isSelected());
    scripted::clearCalls();
    shown.press(key);
    QCOMPARE(shown.dialog.result(), int(QDialog::Accepted));
    QVERIFY(!shown.dialog.isVisible());
    QCOMPARE(shown.dialog.current_device, 1U);
    QCOMPARE(scripted::count("Sys_GetNumOfCameras"), 0);
}

void DiscoveryDlgTest::enterDoesNothingBeforeTheListIsFilled()
{
    Shown shown;
    shown.dialog.show();
    shown.press(Qt::Key_Return);
    QVERIFY(shown.dialog.isVisible());
    QCOMPARE(scripted::count("Sys_GetNumOfCameras"), 0);
}

void DiscoveryDlgTest::enterPressesTheFocusedButton_data()
{
    QTest::addColumn<bool>("keypad");
    QTest::newRow("Return") << false;
    QTest::newRow("Enter") << true;
}

void DiscoveryDlgTest::enterPressesTheFocusedButton()
{
    QFETCH(const bool, keypad);
    const Qt::Key key = keypad ? Qt::Key_Enter : Qt::Key_Return;
    Shown shown;
    QVERIFY(waitUntilReady(shown));
    QVERIFY(shown.tabTo(*shown.update));
    shown.press(key);
    QCOMPARE(scripted::count("Sys_GetNumOfCameras"), 2);
    QVERIFY(shown.dialog.isVisible());

    QVERIFY(shown.tabTo(*shown.cancel));
    shown.press(key);
    QVERIFY(!shown.dialog.isVisible());
    QCOMPARE(shown.dialog.result(), int(QDialog::Rejected));
}

void DiscoveryDlgTest::updateKeepsTheFocus()
{
    Shown shown;
    QVERIFY(waitUntilReady(shown));
    QVERIFY(shown.list->hasFocus());
    QTest::mouseClick(shown.update, Qt::LeftButton);
    QVERIFY(shown.list->hasFocus());

    // A camera needs some seconds to start, so a user presses the button repeatedly.
    QVERIFY(shown.tabTo(*shown.update));
    shown.press(Qt::Key_Space);
    QVERIFY(shown.update->hasFocus());
    scripted::failCall("Sys_GetNumOfCameras", Orvo::CAM_API_STS_BUSY);
    shown.press(Qt::Key_Space);
    QVERIFY(!shown.update->isEnabled());
    QVERIFY(shown.list->hasFocus()); // not "Cancel", the next widget
}

void DiscoveryDlgTest::doubleClickOpens()
{
    Shown shown;
    QVERIFY(waitUntilReady(shown));
    shown.doubleClick(2);
    QCOMPARE(shown.dialog.result(), int(QDialog::Accepted));
    QVERIFY(!shown.dialog.isVisible());
    QCOMPARE(shown.dialog.current_device, 2U);
}

void DiscoveryDlgTest::doubleClickDoesNothingWhileOpenIsDisabled()
{
    scripted::failCall("Cam_GetInformation", Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING, 3);
    Shown shown;
    QVERIFY(waitUntilReady(shown));
    QVERIFY(!shown.open->isEnabled());
    shown.doubleClick(1);
    QVERIFY(shown.dialog.isVisible());
}

void DiscoveryDlgTest::rejected_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("cancel button") << 0;
    QTest::newRow("window closed") << 1;
    QTest::newRow("escape") << 2;
}

void DiscoveryDlgTest::rejected()
{
    QFETCH(int, way);
    Shown shown;
    QTimer::singleShot(0, &shown.dialog, [&] {
        QTRY_VERIFY(shown.open->isEnabled());
        if (way == 0)
            shown.cancel->click();
        if (way == 1)
            shown.dialog.close();
        if (way == 2)
            QTest::keyClick(&shown.dialog, Qt::Key_Escape);
    });
    QCOMPARE(shown.dialog.exec(), int(QDialog::Rejected));
}

// --- Updating and failing -------------------------------------------------------------------------------------------

void DiscoveryDlgTest::updateClearsTheListBeforeEnumerating()
{
    Shown shown;
    shown.dialog.discovery_camera();
    int rowsWhenAsked = -1;
    scripted::onCall("Sys_GetNumOfCameras", [&] { rowsWhenAsked = shown.list->topLevelItemCount(); });
    shown.update->click();
    QCOMPARE(rowsWhenAsked, 0);
    QCOMPARE(shown.list->topLevelItemCount(), 3);
}

void DiscoveryDlgTest::updateRefillsTheList()
{
    Shown shown;
    shown.dialog.discovery_camera();
    shown.list->setCurrentItem(shown.list->topLevelItem(2));
    scripted::setCameras({{"Maker D", "Model 4", "S-4", "new"}});
    shown.update->click();
    QCOMPARE(shown.list->topLevelItemCount(), 1);
    QCOMPARE(shown.row(0), (QStringList{"Maker D", "Model 4", "S-4", "new", "0"}));
    QCOMPARE(shown.dialog.current_device, 0U);
}

void DiscoveryDlgTest::countFailsAfterAClick()
{
    Shown shown;
    shown.dialog.discovery_camera();
    scripted::failCall("Sys_GetNumOfCameras", Orvo::CAM_API_STS_DRIVER_LOAD_ERR);
    shown.update->click();
    QCOMPARE(shown.errors.count(), 1);
    QCOMPARE(shown.errors.at(0).at(0).value<CAM_API_STATUS>(), Orvo::CAM_API_STS_DRIVER_LOAD_ERR);
    QCOMPARE(shown.errors.at(0).at(1).toString(), QString("Sys_GetNumOfCameras()"));
    QCOMPARE(shown.list->topLevelItemCount(), 0);
    QVERIFY(!shown.update->isEnabled());
    QVERIFY(!shown.open->isEnabled());
    QCOMPARE(scripted::count("Cam_GetInformation"), 3);
}

void DiscoveryDlgTest::countFailsAfterTheTimer()
{
    scripted::failCall("Sys_GetNumOfCameras", Orvo::CAM_API_STS_BUSY);
    Shown shown;
    shown.dialog.show();
    QTRY_COMPARE(shown.errors.count(), 1);
    QCOMPARE(shown.errors.at(0).at(1).toString(), QString("Sys_GetNumOfCameras()"));
    QVERIFY(shown.update->isEnabled());
    QVERIFY(!shown.open->isEnabled());
    QCOMPARE(shown.list->topLevelItemCount(), 0);
}

void DiscoveryDlgTest::recordFails_data()
{
    QTest::addColumn<int>("nth");
    QTest::newRow("of the first camera") << 1;
    QTest::newRow("of the second camera") << 2;
    QTest::newRow("of the last camera") << 3;
}

void DiscoveryDlgTest::recordFails()
{
    QFETCH(int, nth);
    scripted::failCall("Cam_GetInformation", Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING, nth);
    Shown shown;
    shown.dialog.discovery_camera();
    QCOMPARE(shown.errors.count(), 1);
    QCOMPARE(shown.errors.at(0).at(0).value<CAM_API_STATUS>(), Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING);
    QCOMPARE(shown.errors.at(0).at(1).toString(), QString("Cam_GetInformation()"));
    QCOMPARE(shown.list->topLevelItemCount(), nth - 1);
    QCOMPARE(shown.list->selectedItems().count(), nth > 1 ? 1 : 0);
    QVERIFY(nth == 1 || shown.list->topLevelItem(0)->isSelected());
    QVERIFY(shown.update->isEnabled());
    QVERIFY(!shown.open->isEnabled());
    QCOMPARE(scripted::count("Cam_GetInformation"), nth);
}

} // namespace

ORVO_TEST_CLASS(DiscoveryDlgTest)
#include "DiscoveryDlgTest.moc"

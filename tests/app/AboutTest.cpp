// The About box: its exact texts, its layout, and what it shows when the camera API fails.

#include "tests/support/MarkingTranslator.h"
#include "tests/support/ScriptedCamera.h"
#include "tests/support/TestProgram.h"
#include "tests/support/WindowDriver.h"

#include <QtTest>

#include <QGridLayout>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QSpacerItem>

namespace {

const QString kVersion = "Version : 0.1.1 (2016/02/26)";

class AboutTest : public QObject {
    Q_OBJECT

private slots:
    void init() { scripted::reset(); }

    void textOnSuccess();
    void textsAreUtf8();
    void textsEndAtTheFirstNul();
    void unterminatedFieldsEndAtTheirSize();
    void labelsAreTranslatable();
    void emptyDriverVersion();
    void allVersionsEmpty();
    void failureShowsVersionAndRightsOnly();
    void failureIsNeitherLoggedNorReported();
    void versionsAreReadEveryTimeTheBoxOpens();
    void appearanceOfTheBox();
    void buttons();
    void spacerIsInTheLastRow();
    void spacerKeepsTheBoxWide();
    void boxIsModalAndIsDestroyedOnClose();
    void worksWithAnOpenCamera();
    void staysOpenWhenTheCameraIsRemoved();

private:
    /// Opens the box, calls `look` with it and closes it by its button.
    void about(const std::function<void(QMessageBox&)>& look);
    [[nodiscard]] QString informativeText();

    std::unique_ptr<WindowDriver> driver;

private slots:
    void cleanup() { driver.reset(); }
};

void AboutTest::about(const std::function<void(QMessageBox&)>& look)
{
    if (!driver)
        driver = std::make_unique<WindowDriver>();
    QVERIFY(driver->triggerModal("action_Menu_About", [&](QWidget& modal) {
        auto* const box = qobject_cast<QMessageBox*>(&modal);
        QVERIFY(box);
        look(*box);
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    }));
}

QString AboutTest::informativeText()
{
    QString text;
    about([&](QMessageBox& box) { text = box.informativeText(); });
    return text;
}

// --- Texts ----------------------------------------------------------------------------------------------------------

void AboutTest::textOnSuccess()
{
    scripted::setSystemInformation("1.2.3", "4.5", "6.7.8.9", "10");
    const QString text = informativeText();
    const QString expected = kVersion + "\n\n  OrvoU3vDriver : 1.2.3"
                                        "\n  OrvoU3vApi2   : 4.5"
                                        "\n  OrvoU3vCamApi : 6.7.8.9"
                                        "\n  OrvoCamApi    : 10";
    QCOMPARE(text.left(expected.size()), expected);

    // Only the rights line follows the expected text.
    const QString rights = text.mid(expected.size());
    QVERIFY(!rights.trimmed().isEmpty());
    QCOMPARE(rights.trimmed().count('\n'), 0);

    // All four colons are in the same column.
    const QStringList lines = text.split('\n');
    for (int line = 2; line <= 5; ++line)
        QCOMPARE(lines.at(line).indexOf(" : "), lines.at(2).indexOf(" : "));
}

void AboutTest::textsAreUtf8()
{
    scripted::setSystemInformation("Gerät 1", "版本 2", "a", "b");
    const QString text = informativeText();
    QVERIFY(text.contains(QString::fromUtf8("\n\n  OrvoU3vDriver : Gerät 1\n")));
    QVERIFY(text.contains(QString::fromUtf8("\n  OrvoU3vApi2   : 版本 2\n")));
}

void AboutTest::textsEndAtTheFirstNul()
{
    scripted::setSystemInformation(std::string("one\0two", 7), "x", "y", "z");
    QVERIFY(informativeText().contains("\n\n  OrvoU3vDriver : one\n  OrvoU3vApi2   : x\n"));
}

void AboutTest::unterminatedFieldsEndAtTheirSize()
{
    const std::string longest(63, 'a');
    const std::string unterminated(64, 'b');
    scripted::setSystemInformation(longest, unterminated, longest, unterminated);
    const QString text = informativeText();
    const QString expected = kVersion + "\n\n  OrvoU3vDriver : " + QString(63, 'a') +
                             "\n  OrvoU3vApi2   : " + QString(64, 'b') + "\n  OrvoU3vCamApi : " + QString(63, 'a') +
                             "\n  OrvoCamApi    : " + QString(64, 'b') + '\n';
    QCOMPARE(text.left(expected.size()), expected);
    QVERIFY(!text.contains('X')); // the bytes behind the terminators
}

void AboutTest::labelsAreTranslatable()
{
    scripted::setSystemInformation("1", "2", "3", "4");
    const QString plain = informativeText();
    const QString rights = plain.mid(plain.indexOf("\n\n", plain.indexOf("OrvoCamApi    : 4")));
    const auto marked = MarkingTranslator::marked;
    {
        const MarkingTranslator translator("QMainWindow");
        QCOMPARE(informativeText(), marked(kVersion) + marked("\n\n  OrvoU3vDriver : ") + '1' +
                                        marked("\n  OrvoU3vApi2   : ") + '2' + marked("\n  OrvoU3vCamApi : ") + '3' +
                                        marked("\n  OrvoCamApi    : ") + '4' + marked(rights));
    }
    const MarkingTranslator other("MainWindow");
    QCOMPARE(informativeText(), plain);
}

void AboutTest::emptyDriverVersion()
{
    scripted::setSystemInformation("", "4.5", "6.7", "8.9");
    const QString text = informativeText();
    QVERIFY(text.startsWith(kVersion + "\n\n  OrvoU3vDriver : \n  OrvoU3vApi2   : 4.5\n"));
}

void AboutTest::allVersionsEmpty()
{
    scripted::setSystemInformation("", "", "", "");
    const QString expected =
        kVersion + "\n\n  OrvoU3vDriver : \n  OrvoU3vApi2   : \n  OrvoU3vCamApi : \n  OrvoCamApi    : ";
    QCOMPARE(informativeText().left(expected.size()), expected);
}

// --- Failure --------------------------------------------------------------------------------------------------------

void AboutTest::failureShowsVersionAndRightsOnly()
{
    scripted::setSystemInformation("1", "2", "3", "4");
    const QString whole = informativeText();
    const QString rights = whole.mid(whole.indexOf("OrvoCamApi    : 4") + QString("OrvoCamApi    : 4").size());

    for (const std::uint32_t status : {Orvo::CAM_API_STS_NOT_INITIALIZED, Orvo::CAM_API_STS_UNSUCCESSFUL}) {
        scripted::failCall("Sys_GetInformation", status);
        QCOMPARE(informativeText(), kVersion + rights);
    }
}

void AboutTest::failureIsNeitherLoggedNorReported()
{
    scripted::failAlways("Sys_GetInformation", Orvo::CAM_API_STS_NOT_INITIALIZED);
    about([](QMessageBox&) {});
    QCOMPARE(driver->log(), QStringList());
}

void AboutTest::versionsAreReadEveryTimeTheBoxOpens()
{
    scripted::setSystemInformation("old", "", "", "");
    QVERIFY(informativeText().contains("OrvoU3vDriver : old\n"));
    scripted::setSystemInformation("new", "", "", "");
    QVERIFY(informativeText().contains("OrvoU3vDriver : new\n"));
    QCOMPARE(scripted::count("Sys_GetInformation"), 2);
}

// --- Look -----------------------------------------------------------------------------------------------------------

void AboutTest::appearanceOfTheBox()
{
    about([&](QMessageBox& box) {
        QCOMPARE(box.parentWidget(), static_cast<QWidget*>(&driver->window()));
        QCOMPARE(box.text(), QString("OrvoCamLinuxViewer"));
        QCOMPARE(box.windowTitle(), QString());
        QCOMPARE(box.font().family(), QString("monospace"));
        QCOMPARE(box.font().pointSize(), 11);
        QCOMPARE(box.font().weight(), int(QFont::Normal));
        QVERIFY(!box.font().italic());
        const QPixmap icon(":/images/Icon/Viewer_Main_icon_2.ico");
        QVERIFY(!icon.isNull());
        QCOMPARE(box.iconPixmap().toImage(), icon.toImage());
    });
}

void AboutTest::buttons()
{
    about([](QMessageBox& box) {
        QCOMPARE(box.standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
        QCOMPARE(box.buttons().size(), 1);
        QCOMPARE(box.defaultButton(), qobject_cast<QPushButton*>(box.button(QMessageBox::Ok)));
    });
}

void AboutTest::spacerIsInTheLastRow()
{
    about([](QMessageBox& box) {
        auto* const grid = qobject_cast<QGridLayout*>(box.layout());
        QVERIFY(grid);
        int found = 0;
        for (int i = 0; i < grid->count(); ++i) {
            int row = 0;
            int column = 0;
            int rowSpan = 0;
            int columnSpan = 0;
            grid->getItemPosition(i, &row, &column, &rowSpan, &columnSpan);
            const QSpacerItem* const spacer = grid->itemAt(i)->spacerItem();
            if (!spacer || spacer->sizeHint().width() != 545) {
                QVERIFY2(row + rowSpan < grid->rowCount(), "only the spacer is in the last row");
                continue;
            }
            ++found;
            QCOMPARE(spacer->sizeHint(), QSize(545, 0));
            QCOMPARE(spacer->sizePolicy().horizontalPolicy(), QSizePolicy::Minimum);
            QCOMPARE(spacer->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
            QCOMPARE(row, grid->rowCount() - 1);
            QCOMPARE(column, 0);
            QCOMPARE(rowSpan, 1);
            QCOMPARE(columnSpan, grid->columnCount());
        }
        QCOMPARE(found, 1);
    });
}

void AboutTest::spacerKeepsTheBoxWide()
{
    // With short texts only the spacer keeps the box wide.
    scripted::failCall("Sys_GetInformation", Orvo::CAM_API_STS_NOT_INITIALIZED);
    about([](QMessageBox& box) {
        const QMargins margins = box.layout()->contentsMargins();
        QVERIFY2(box.width() >= 545 + margins.left() + margins.right(), qPrintable(QString::number(box.width())));
    });
}

void AboutTest::boxIsModalAndIsDestroyedOnClose()
{
    QPointer<QMessageBox> seen;
    about([&](QMessageBox& box) {
        QVERIFY(box.isModal());
        seen = &box;
    });
    QVERIFY(seen.isNull());
    QVERIFY(driver->window().findChildren<QMessageBox*>().isEmpty());
}

void AboutTest::worksWithAnOpenCamera()
{
    scripted::setSystemInformation("1", "2", "3", "4");
    const QString closed = informativeText();
    driver->open();
    driver->start();
    scripted::clearCalls();
    QCOMPARE(informativeText(), closed);
    QCOMPARE(scripted::calls({"Sys_GetInformation"}).at(0).text(), std::string("Sys_GetInformation(out)"));
    QVERIFY(scripted::streaming());
}

void AboutTest::staysOpenWhenTheCameraIsRemoved()
{
    driver = std::make_unique<WindowDriver>();
    driver->open();
    driver->start();
    about([this](QMessageBox& box) {
        scripted::unplug();
        QTRY_COMPARE(driver->log(), QStringList("A camera has been Removed."));
        QVERIFY(driver->enabled("actionOpen"));
        QVERIFY(box.isVisible());
    });
}

} // namespace

ORVO_TEST_CLASS(AboutTest)
#include "AboutTest.moc"

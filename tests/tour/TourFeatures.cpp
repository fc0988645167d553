// The feature browser: levels, orders, folding, descriptions, and every editor.

#include "tests/tour/Tour.h"

#include "features/description/DescBox.h"
#include "features/view/FeatureView.h"
#include "tests/support/FeatureHand.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <QToolTip>

#include <algorithm>

void Tour::featuresChapter()
{
    m_driver->stop();
    FeatureHand hand(m_driver->window());
    for (const char* level : {"&levelBeginner", "&levelExpert", "&levelGuru"}) {
        hand.clickTool(level);
        picture(QString("features-%1").arg(level + 1));
    }
    hand.view().selectInvisible(); // it has no visible button
    hand.clickName("VisibilityInvisible");
    picture("features-levelInvisible");
    hand.clickTool("&levelGuru");
    hand.clickName("Height");
    picture("features-unfolded");
    hand.choose("AccessSwitch", "NotImplemented");
    hand.clickName("AccessLockedWhileStreaming");
    picture("features-colours");
    hand.choose("AccessSwitch", "ReadWrite");
    for (const char* name : {"ExposureTime", "AccessNotAvailable", "AccessReadOnly", "EnumerationChanging"}) {
        hand.clickName(name);
        picture(QString("description-%1").arg(name));
    }
    toolTips();
    hand.clickTool("&levelExpert");
    hand.clickTool("&sortAz");
    picture("features-by-name");
    hand.clickTool("&levelGuru");
    picture("features-by-name-guru"); // with the longest names
    hand.clickTool("&sortCtg");
    picture("features-by-category");
}

void Tour::toolTips()
{
    FeatureHand hand(m_driver->window());
    hand.clickName("Height");
    const auto rest = [this](QWidget* where, QPoint point, const QString& name) {
        QTest::mouseMove(where, point + QPoint(0, 3)); // otherwise a pointer that is already there would not move
        QTest::mouseMove(where, point);
        const auto shown = [] {
            const QWidgetList windows = QApplication::topLevelWidgets();
            return std::any_of(windows.begin(), windows.end(), [](const QWidget* window) {
                return window->inherits("QTipLabel") && window->isVisible();
            });
        };
        waitFor("the tool tip", shown);
        picture(name);
        QTest::mouseMove(where, QPoint());
        QToolTip::hideText();
        waitFor("the tool tip to disappear", [&] { return !shown(); });
    };
    const QTableView& table = hand.table();
    rest(table.viewport(), table.visualRect(table.currentIndex()).center(), "tool-tip-name");
    auto* const description = m_driver->window().findChild<DescBox*>();
    rest(description, description->rect().center(), "tool-tip-range");
}

void Tour::editorsChapter()
{
    editors(QString());
}

void Tour::editors(const QString& suffix)
{
    struct Stop {
        const char* name;
        const char* feature;
    };
    constexpr Stop kStops[] = {
        {"line-edit", "DeviceUserID"},
        {"slider", "Width"},
        {"slider-logarithmic", "ExposureTime"},
        {"combo-box", "PixelFormat"},
        {"button", "TriggerSoftware"},
        {"boolean", "ReverseX"},
        {"empty-enumeration", "EnumerationEmpty"},
        {"hexadecimal", "IntegerHexNumber"},
        {"mac-address", "IntegerMACAddress"},
        {"long-text", "StringLong"},
        {"markup", "StringMarkup"},
    };
    FeatureHand hand(m_driver->window());
    for (const Stop& stop : kStops) {
        hand.clickValue(stop.feature);
        picture(QString("editor-%1%2").arg(stop.name, suffix));
    }

    auto* const choices = qobject_cast<QComboBox*>(hand.clickValue("PixelFormat"));
    choices->showPopup();
    picture("editor-choices" + suffix);
    choices->hidePopup();
}

void Tour::refusedAndSlowChapter()
{
    FeatureHand hand(m_driver->window());
    // A refused write shows only in the return of the old value.
    const auto replugAfter7 = [&](const QString& name, const QString& taken) {
        auto* const line = qobject_cast<QLineEdit*>(hand.clickValue("SimulationReplugAfter"));
        line->selectAll();
        QTest::keyClicks(line, "7");
        picture(name + "-typed");
        QTest::keyClick(line, Qt::Key_Return);
        picture(name);
        if (hand.shown("SimulationReplugAfter") != taken)
            endTour("another value than " + taken + ": " + hand.shown("SimulationReplugAfter"));
    };
    hand.choose("SimulationRefuseAccess", "true");
    replugAfter7("write-refused", "0 s");
    hand.choose("SimulationRefuseAccess", "false");
    replugAfter7("write-accepted", "7 s");

    hand.type("SimulationAccessDelay", "1000");
    hand.type("Width", "640");
    picture("camera-is-slow");
    hand.type("SimulationAccessDelay", "0");
    hand.type("Width", "1920");
}

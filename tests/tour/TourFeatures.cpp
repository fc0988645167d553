// The feature browser: levels, orders, folding, descriptions, and every editor.

#include "tests/tour/Tour.h"

#include "features/FeatureView.h"
#include "tests/support/FeatureHand.h"

#include <QApplication>
#include <QComboBox>
#include <QStyleFactory>

#include <cstdio>

void Tour::featuresChapter()
{
    m_driver->stop();
    FeatureHand hand(m_driver->window());
    for (const char* level : {"&levelBeginner", "&levelExpert", "&levelGuru"}) {
        hand.clickTool(level);
        picture(QString("features-%1").arg(level + 1));
    }
    hand.view().selectInvisible(); // its button is not offered
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
    hand.clickTool("&levelExpert");
    hand.clickTool("&sortAz");
    picture("features-by-name");
    hand.clickTool("&levelGuru"); // where a feature has a very long name
    picture("features-by-name-long");
    hand.clickTool("&sortCtg");
    picture("features-by-category");
}

void Tour::editorsChapter()
{
    editors(QString());
    // Widgets without a frame look different everywhere.
    const QString styleBefore = QApplication::style()->objectName();
    for (const char* style : {"Breeze", "Adwaita-Dark"}) {
        if (!QStyleFactory::keys().contains(style, Qt::CaseInsensitive)) {
            std::printf("no pictures of the editors under %s, which is not installed\n", style);
            continue;
        }
        QApplication::setStyle(style);
        QCoreApplication::processEvents(); // the table takes its new size, where a click has to hit
        editors(QString("-%1").arg(style).toLower());
    }
    QApplication::setStyle(styleBefore);
}

void Tour::editors(const QString& suffix)
{
    struct Stop {
        const char* name;
        const char* feature;
    };
    constexpr Stop stops[] = {
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
    for (const Stop& stop : stops) {
        hand.clickValue(stop.feature);
        picture(QString("editor-%1%2").arg(stop.name, suffix));
    }

    auto* const choices = qobject_cast<QComboBox*>(hand.clickValue("PixelFormat"));
    choices->showPopup();
    picture("editor-choices" + suffix);
    choices->hidePopup();
}

void Tour::slowAndSilentCameraChapter()
{
    FeatureHand hand(m_driver->window());
    hand.choose("SimulationRefuseAccess", "true");
    hand.type("Width", "640");
    picture("camera-refuses");
    hand.choose("SimulationRefuseAccess", "false");
    picture("camera-answers-again");

    hand.type("SimulationAccessDelay", "1000");
    hand.type("Width", "640");
    picture("camera-is-slow");
    hand.type("SimulationAccessDelay", "0");
    hand.type("Width", "1920");
}

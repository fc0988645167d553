// The feature browser: levels, orders, folding, descriptions, and every editor.

#include "tests/tour/Tour.h"

#include "tests/support/FeatureHand.h"

void Tour::featuresChapter()
{
    m_driver->stop();
    FeatureHand hand(m_driver->window());
    for (const char* level : {"&levelBeginner", "&levelExpert", "&levelGuru"}) {
        hand.clickTool(level);
        picture(QString("features-%1").arg(level + 1));
    }
    hand.clickName("PixelFormat");
    picture("features-unfolded");
    for (const char* name : {"ExposureTime", "AccessNotAvailable", "AccessReadOnly", "EnumerationChanging"}) {
        hand.clickName(name);
        picture(QString("description-%1").arg(name));
    }
    hand.clickTool("&sortAz");
    picture("features-by-name");
    hand.clickTool("&sortCtg");
    picture("features-by-category");
}

void Tour::editorsChapter()
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
        {"check", "ReverseX"},
        {"empty-enumeration", "EnumerationEmpty"},
        {"hexadecimal", "IntegerHexNumber"},
        {"mac-address", "IntegerMACAddress"},
        {"long-text", "StringLong"},
        {"markup", "StringMarkup"},
    };
    FeatureHand hand(m_driver->window());
    for (const Stop& stop : stops) {
        hand.clickValue(stop.feature);
        picture(QString("editor-%1").arg(stop.name));
    }
}

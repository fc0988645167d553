// The program under the styles of other desktops, dark ones included.

#include "tests/tour/Tour.h"

#include "tests/support/FeatureHand.h"

#include <QApplication>
#include <QStyleFactory>

void Tour::stylesChapter()
{
    for (const char* style : {"Breeze", "Adwaita-Dark"}) {
        if (!QStyleFactory::keys().contains(style, Qt::CaseInsensitive))
            endTour(QString("the style %1 is not installed").arg(style));
        const QString suffix = QString("-%1").arg(style).toLower();
        QApplication::setStyle(style);
        newWindow(); // a style change of an existing window gives a layout that no user sees
        openCamera("SIM-C1920");
        m_driver->start();
        waitForRates();
        picture("live" + suffix);
        m_driver->stop();
        FeatureHand(m_driver->window()).clickTool("&levelGuru");
        editors(suffix); // frameless widgets look different in every style
    }
}

// Simulates a user who sets up the first simulated camera, one feature of each kind, with the real window and the real
// camera libraries. check-operation-log checks the operation log that the viewer writes.

#include "tests/support/FeatureHand.h"
#include "tests/support/WindowDriver.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    WindowDriver driver;
    driver.open();
    FeatureHand hand(driver.window());
    hand.clickTool("&levelGuru");
    hand.type("Width", "640");
    hand.type("ExposureTime", "5000");
    hand.choose("ReverseX", "true");
    hand.choose("PixelFormat", "Mono12");
    hand.type("DeviceUserID", "bench 7, left");
    hand.type("Width", "641"); // not a multiple of its increment
    hand.execute("TimestampLatch");
    driver.close();
    for (const QString& line : driver.log())
        std::fprintf(stderr, "%s\n", qPrintable(line));
    return driver.log().isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

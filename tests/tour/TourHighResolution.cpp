// The program on a screen of 192 dpi.

#include "tests/tour/Tour.h"

#include "tests/support/Desktop.h"

#include <QProcess>

#include <algorithm>
#include <optional>

namespace {

constexpr int kScale = 2;
const QString kMainWindow = "OrvoCamLinuxViewer";
const QString kDialog = "Select a Camera";

// Positions in the dialog and in the main window, as in their forms.
constexpr QRect kOpenButton{270, 230, 91, 31};
constexpr QRect kRatesArea{20, 65, 440, 30};

QRect scaled(const QRect& rect)
{
    return {rect.topLeft() * kScale, rect.size() * kScale};
}

/// Whether the image contains enabled text; disabled text is brighter.
bool hasBlack(const QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 40)
                return true;
        }
    }
    return false;
}

/// The icon as it appears on the screen.
QImage icon(const char* name)
{
    const QImage original(QString(ICON_FOLDER "/%1.png").arg(name));
    return original.convertToFormat(QImage::Format_ARGB32).scaled(original.size() * kScale);
}

} // namespace

void Tour::highResolutionChapter()
{
    // A separate process, because the toolkit reads the resolution only when the application object is constructed.
    m_driver->window().hide();
    QProcess viewer;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_PRELOAD", SIMULATED_ONLY);
    environment.insert("QT_FONT_DPI", "192");
    viewer.setProcessEnvironment(environment);
    viewer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    viewer.start(VIEWER_PROGRAM, QStringList());

    Desktop desktop;
    const auto clickIcon = [&](const char* name) {
        std::optional<QRect> found;
        waitFor(name, [&] { return (found = desktop.find(icon(name))).has_value(); });
        desktop.click(found->center());
    };
    const auto rates = [&] {
        const QPoint origin = desktop.window(kMainWindow).value_or(QRect()).topLeft();
        return desktop.look().copy(scaled(kRatesArea).translated(origin));
    };

    clickIcon("Open");
    waitFor("the dialog", [&] { return desktop.window(kDialog).has_value(); });
    const QRect button = scaled(kOpenButton).translated(desktop.window(kDialog)->topLeft());
    waitFor("the cameras", [&] { return hasBlack(desktop.look().copy(button)); });
    picture("192-dpi-discovery", *desktop.frame(kMainWindow));
    desktop.click(button.center());

    clickIcon("Play");
    const QImage noRates = rates();
    waitFor("frame rates", [&] { return rates() != noRates; });
    picture("192-dpi-live", *desktop.frame(kMainWindow));

    desktop.closeWindow(kMainWindow);
    waitFor("the program to exit", [&] { return viewer.state() == QProcess::NotRunning; });
    m_driver->window().show();
}

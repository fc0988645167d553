#include "app/MainWindow.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char* argv[])
{
    // On high-resolution screens the geometry scales with the text, by whole factors, so that all pixels of an image
    // have the same size. A factor of 1.5 is rounded down: a window of twice the size would not fit a screen of
    // 1920 x 1080 pixels.
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::RoundPreferFloor);
    const QApplication application(argc, argv);
    QApplication::setWindowIcon(QIcon(":/images/Icon/Viewer_Main_icon_2.ico"));
    MainWindow window;
    window.show();
    return QApplication::exec();
}

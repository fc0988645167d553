#include "app/MainWindow.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char* argv[])
{
    // The geometry grows with the text on screens of high resolution, by whole factors: those leave every pixel of an
    // image equally large.
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    QApplication::setWindowIcon(QIcon(":/images/Icon/Viewer_Main_icon_2.ico"));
    MainWindow window;
    window.show();
    return QApplication::exec();
}

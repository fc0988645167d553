// Leaks memory in a slot of the GUI thread, with the toolkit's event loop on the stack below.

#include <QApplication>
#include <QTimer>

namespace {

[[gnu::noinline]] void loseMemory()
{
    volatile char* const lost = new char[64];
    lost[0] = 1;
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QTimer::singleShot(0, &application, [] {
        loseMemory();
        QCoreApplication::quit();
    });
    return QApplication::exec();
}

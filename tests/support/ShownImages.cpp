#include "tests/support/ShownImages.h"

#include "app/MainWindow.h"

#include <QTest>

ShownImages::ShownImages(MainWindow& window, Keep keep)
    : m_keep(keep)
{
    QObject::connect(&window, &MainWindow::Update_Image, &m_receiver, [this](const QImage& image) { take(image); });
}

void ShownImages::take(const QImage& image)
{
    ++m_count;
    if (m_keep == Keep::Last)
        m_images.clear();
    if (m_keep != Keep::None)
        m_images << image;
}

bool ShownImages::waitForMore(int more, int patienceMs) const
{
    const int wanted = m_count + more;
    return QTest::qWaitFor([&] { return m_count >= wanted; }, patienceMs);
}

void ShownImages::forget()
{
    m_count = 0;
    m_images.clear();
}

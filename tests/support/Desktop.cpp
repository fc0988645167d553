#include "tests/support/Desktop.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QVector>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

// After Qt: these headers define common words as macros.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

namespace {

struct OpaquePixel {
    QPoint at;
    QRgb colour;
};

QVector<OpaquePixel> opaquePixels(const QImage& icon)
{
    QVector<OpaquePixel> pixels;
    for (int y = 0; y < icon.height(); ++y) {
        for (int x = 0; x < icon.width(); ++x) {
            if (qAlpha(icon.pixel(x, y)) == 255)
                pixels.append({{x, y}, icon.pixel(x, y) | 0xFF000000});
        }
    }
    return pixels;
}

/// The bytes of a property. Xlib stores each 32-bit number in a long.
QByteArray property(Display* display, Window window, const char* name, Atom wantedType)
{
    Atom type = None;
    int format = 0;
    unsigned long items = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    constexpr long kLongest = 0x100000;
    if (XGetWindowProperty(display, window, XInternAtom(display, name, False), 0, kLongest, False, wantedType, &type,
                           &format, &items, &rest, &data) != Success ||
        !data) {
        return {};
    }
    const unsigned long itemSize = format == 32 ? sizeof(long) : static_cast<unsigned long>(format) / 8;
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(items * itemSize));
    XFree(data);
    return bytes;
}

QString titleOf(Display* display, Window window)
{
    return QString::fromUtf8(property(display, window, "_NET_WM_NAME", XInternAtom(display, "UTF8_STRING", False)));
}

QVector<Window> childrenOf(Display* display, Window window)
{
    Window root = None;
    Window parent = None;
    Window* children = nullptr;
    unsigned int count = 0;
    if (XQueryTree(display, window, &root, &parent, &children, &count) == 0 || !children)
        return {};
    QVector<Window> found;
    std::copy_n(children, count, std::back_inserter(found));
    XFree(children);
    return found;
}

bool isShown(Display* display, Window window, const QString& title)
{
    XWindowAttributes attributes;
    return XGetWindowAttributes(display, window, &attributes) != 0 && attributes.map_state == IsViewable &&
           titleOf(display, window) == title;
}

} // namespace

Desktop::Desktop()
    : m_display(XOpenDisplay(nullptr))
{
    if (!m_display)
        qFatal("no X display");
}

Desktop::~Desktop()
{
    XCloseDisplay(m_display);
}

QImage Desktop::look() const
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage().convertToFormat(QImage::Format_RGB32);
}

std::optional<QRect> Desktop::find(const QImage& icon) const
{
    const QVector<OpaquePixel> pixels = opaquePixels(icon);
    if (pixels.isEmpty())
        return std::nullopt;
    const QImage screen = look();
    const auto standsAt = [&](int x, int y) {
        return std::all_of(pixels.begin(), pixels.end(), [&](const OpaquePixel& pixel) {
            const auto* const line = reinterpret_cast<const QRgb*>(screen.constScanLine(y + pixel.at.y()));
            return (line[x + pixel.at.x()] | 0xFF000000) == pixel.colour;
        });
    };
    for (int y = 0; y + icon.height() <= screen.height(); ++y) {
        for (int x = 0; x + icon.width() <= screen.width(); ++x) {
            if (standsAt(x, y))
                return QRect({x, y}, icon.size());
        }
    }
    return std::nullopt;
}

Desktop::Ids Desktop::ids(const QString& title) const
{
    for (const Window top : childrenOf(m_display, DefaultRootWindow(m_display))) {
        if (isShown(m_display, top, title))
            return {top, top};
        for (const Window inFrame : childrenOf(m_display, top)) {
            if (isShown(m_display, inFrame, title))
                return {inFrame, top};
        }
    }
    return {};
}

std::optional<QRect> Desktop::place(unsigned long id) const
{
    XWindowAttributes attributes;
    int x = 0;
    int y = 0;
    Window child = None;
    if (id == None || XGetWindowAttributes(m_display, id, &attributes) == 0 ||
        XTranslateCoordinates(m_display, id, attributes.root, 0, 0, &x, &y, &child) == False) {
        return std::nullopt;
    }
    return QRect(x, y, attributes.width, attributes.height);
}

std::optional<QRect> Desktop::window(const QString& title) const
{
    return place(ids(title).window);
}

std::optional<QRect> Desktop::frame(const QString& title) const
{
    return place(ids(title).frame);
}

QImage Desktop::icon(const QString& title) const
{
    // The first of several icons: width, height, and a number for each pixel.
    const QByteArray bytes = property(m_display, ids(title).window, "_NET_WM_ICON", XA_CARDINAL);
    std::vector<long> numbers(static_cast<std::size_t>(bytes.size()) / sizeof(long));
    std::memcpy(numbers.data(), bytes.constData(), numbers.size() * sizeof(long));
    if (numbers.size() < 2 || numbers.size() < 2 + static_cast<std::size_t>(numbers[0] * numbers[1]))
        return {};
    QImage image(static_cast<int>(numbers[0]), static_cast<int>(numbers[1]), QImage::Format_ARGB32);
    auto number = numbers.begin() + 2;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, static_cast<QRgb>(*number++));
    }
    return image;
}

void Desktop::click(QPoint where)
{
    XTestFakeMotionEvent(m_display, -1, where.x(), where.y(), CurrentTime);
    XTestFakeButtonEvent(m_display, Button1, True, CurrentTime);
    XTestFakeButtonEvent(m_display, Button1, False, CurrentTime);
    XSync(m_display, False);
}

void Desktop::closeWindow(const QString& title)
{
    const Window id = ids(title).window;
    XEvent event;
    std::memset(&event, 0, sizeof event);
    event.xclient.type = ClientMessage;
    event.xclient.window = id;
    event.xclient.message_type = XInternAtom(m_display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(m_display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(m_display, id, False, NoEventMask, &event);
    XSync(m_display, False);
}

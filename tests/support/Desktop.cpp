#include "tests/support/Desktop.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QVector>

#include <algorithm>
#include <cstring>

// After Qt: these headers define common words as macros.
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

QString titleOf(Display* display, Window window)
{
    const Atom utf8 = XInternAtom(display, "UTF8_STRING", False);
    const Atom name = XInternAtom(display, "_NET_WM_NAME", False);
    Atom type = None;
    int format = 0;
    unsigned long items = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    constexpr long longest = 256;
    if (XGetWindowProperty(display, window, name, 0, longest, False, utf8, &type, &format, &items, &rest, &data) !=
        Success) {
        return {};
    }
    QString title = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(items));
    if (data)
        XFree(data);
    return title;
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

unsigned long Desktop::windowId(const QString& title) const
{
    Window root = None;
    Window parent = None;
    Window* children = nullptr;
    unsigned int count = 0;
    if (XQueryTree(m_display, DefaultRootWindow(m_display), &root, &parent, &children, &count) == 0)
        return None;
    Window found = None;
    for (unsigned int i = 0; i < count && found == None; ++i) {
        XWindowAttributes attributes;
        if (XGetWindowAttributes(m_display, children[i], &attributes) != 0 && attributes.map_state == IsViewable &&
            titleOf(m_display, children[i]) == title) {
            found = children[i];
        }
    }
    if (children)
        XFree(children);
    return found;
}

std::optional<QRect> Desktop::window(const QString& title) const
{
    const Window id = windowId(title);
    XWindowAttributes attributes;
    if (id == None || XGetWindowAttributes(m_display, id, &attributes) == 0)
        return std::nullopt;
    return QRect(attributes.x, attributes.y, attributes.width, attributes.height);
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
    const Window id = windowId(title);
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

#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

#include <optional>

typedef struct _XDisplay Display; // NOLINT(bugprone-reserved-identifier): the name comes from Xlib

/// The X screen as a user sees it: reads pixels, moves the pointer, clicks, closes windows.
class Desktop {
public:
    Desktop();
    ~Desktop();
    Q_DISABLE_COPY_MOVE(Desktop)

    [[nodiscard]] QImage look() const;

    /// The place on the screen where all fully opaque pixels of `icon` match.
    [[nodiscard]] std::optional<QRect> find(const QImage& icon) const;

    /// The visible top-level window with this title, without the frame of the window manager.
    [[nodiscard]] std::optional<QRect> window(const QString& title) const;

    /// The same window with its frame.
    [[nodiscard]] std::optional<QRect> frame(const QString& title) const;

    /// The icon that the program sets for the window, or null.
    [[nodiscard]] QImage icon(const QString& title) const;

    void click(QPoint where);

    /// Sends the close request that a click on the window's close button sends.
    void closeWindow(const QString& title);

private:
    /// The window and its frame; the same without a window manager.
    struct Ids {
        unsigned long window = 0;
        unsigned long frame = 0;
    };
    [[nodiscard]] Ids ids(const QString& title) const;
    [[nodiscard]] std::optional<QRect> place(unsigned long id) const;

    Display* m_display;
};

#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

#include <optional>

typedef struct _XDisplay Display; // NOLINT(bugprone-reserved-identifier): the name that X gave it

/// The X screen as a user has it: looks at pixels, moves the pointer, clicks, closes windows.
class Desktop {
public:
    Desktop();
    ~Desktop();
    Q_DISABLE_COPY_MOVE(Desktop)

    [[nodiscard]] QImage look() const;

    /// Where on the screen the fully opaque pixels of `icon` stand just so.
    [[nodiscard]] std::optional<QRect> find(const QImage& icon) const;

    /// The visible top-level window with this title, without what a window manager adds.
    [[nodiscard]] std::optional<QRect> window(const QString& title) const;

    /// The same window with its frame.
    [[nodiscard]] std::optional<QRect> frame(const QString& title) const;

    /// The icon that the program gives to the window, null where it gives none.
    [[nodiscard]] QImage icon(const QString& title) const;

    void click(QPoint where);

    /// What a click on the window's close button asks for.
    void closeWindow(const QString& title);

private:
    /// The window and its frame; both are the same where no window manager runs.
    struct Ids {
        unsigned long window = 0;
        unsigned long frame = 0;
    };
    [[nodiscard]] Ids ids(const QString& title) const;
    [[nodiscard]] std::optional<QRect> place(unsigned long id) const;

    Display* m_display;
};

// What a random user does with the window, whatever the camera.

#include "features/view/FeatureView.h"
#include "tests/attack/RandomUser.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDockWidget>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QTest>
#include <QToolBar>
#include <QWheelEvent>

#include <algorithm>
#include <iterator>

QWidget* RandomUser::anyWidget()
{
    std::vector<QWidget*> visible;
    for (QWidget* const widget : QApplication::allWidgets()) {
        if (widget->isVisible() && !widget->size().isEmpty())
            visible.push_back(widget);
    }
    // The order of allWidgets() depends on addresses; that of the tree does not.
    std::vector<QWidget*> ordered;
    const auto children = session().driver().window().findChildren<QWidget*>();
    std::copy_if(children.begin(), children.end(), std::back_inserter(ordered),
                 [&](QWidget* child) { return std::find(visible.begin(), visible.end(), child) != visible.end(); });
    QWidget* const focus = QApplication::focusWidget();
    if (focus && !focus->size().isEmpty() && draw(3) == 0)
        return focus;
    return ordered.empty() ? &session().driver().window() : pick(ordered);
}

QPoint RandomUser::anyPoint(const QWidget& widget, std::uint32_t random)
{
    return {static_cast<int>(random % static_cast<std::uint32_t>(widget.width())),
            static_cast<int>(random / 4096 % static_cast<std::uint32_t>(widget.height()))};
}

void RandomUser::triggerAction()
{
    const QString exit = "action_Menu_Exit";
    std::vector<QString> names;
    for (const QAction* action : session().driver().window().findChildren<QAction*>()) {
        if (action->objectName().startsWith("action") && action->objectName() != exit)
            names.push_back(action->objectName());
    }
    // Most actions need a stream, and no session would last if leaving were as likely as the others.
    const QString action = draw(60) == 0 ? exit : draw(5) == 0 ? QString("actionStart") : pick(names);
    say(action);
    static_cast<void>(session().trigger(qPrintable(action)));
}

void RandomUser::pressKey()
{
    static const std::vector<int> keys = {
        Qt::Key_Tab,      Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape, Qt::Key_Up,
        Qt::Key_Down,     Qt::Key_Left,    Qt::Key_Right,  Qt::Key_Home,  Qt::Key_End,    Qt::Key_PageUp,
        Qt::Key_PageDown, Qt::Key_Space,   Qt::Key_Delete, Qt::Key_F2,    Qt::Key_F10,    Qt::Key_Backspace,
        Qt::Key_Plus,     Qt::Key_Minus,   Qt::Key_0,      Qt::Key_1,     Qt::Key_9,      Qt::Key_Period,
        Qt::Key_A,        Qt::Key_C,       Qt::Key_V,      Qt::Key_X,     Qt::Key_Z,      Qt::Key_Asterisk};
    static const std::vector<Qt::KeyboardModifiers> modifiers = {
        Qt::NoModifier, Qt::NoModifier, Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier};
    const QPointer<QWidget> widget = anyWidget();
    for (std::uint32_t left = draw(4) + 1; left > 0 && widget; --left) {
        const int key = pick(keys);
        const Qt::KeyboardModifiers with = pick(modifiers);
        const QString text = key < 128 && with == Qt::NoModifier ? QString(QChar(key)) : QString();
        say(QString("key %1 on %2")
                .arg(QKeySequence(key | static_cast<int>(with)).toString(), widget->metaObject()->className()));
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, with, text);
            if (widget)
                QCoreApplication::sendEvent(widget, &event);
        }
        handleEvents();
    }
}

void RandomUser::click()
{
    const QPointer<QWidget> widget = anyWidget();
    const QPoint from = anyPoint(*widget, draw(0x7FFFFFFF));
    const QPoint to = draw(3) == 0 ? anyPoint(*widget, draw(0x7FFFFFFF)) : from;
    const std::uint32_t kind = draw(8);
    say(QString("%1 on %2 from %3, %4 to %5, %6")
            .arg(kind == 0   ? "context menu"
                 : kind == 1 ? "double click"
                             : "click")
            .arg(widget->metaObject()->className())
            .arg(from.x())
            .arg(from.y())
            .arg(to.x())
            .arg(to.y()));
    if (kind == 0) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, from, widget->mapToGlobal(from));
        QCoreApplication::sendEvent(widget, &event);
        return;
    }
    const auto send = [&widget](QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons) {
        if (!widget)
            return;
        QMouseEvent event(type, at, widget->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(widget, &event);
    };
    send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    if (to != from && !qobject_cast<QLineEdit*>(widget)) // dragging a text waits for the pointer of the screen
        send(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    if (kind == 1) {
        send(QEvent::MouseButtonDblClick, from, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, from, Qt::LeftButton, Qt::NoButton);
    }
}

void RandomUser::turnWheelAnywhere()
{
    const QPointer<QWidget> widget = anyWidget();
    const QPoint at = anyPoint(*widget, draw(0x7FFFFFFF));
    const int notches = static_cast<int>(draw(21)) - 10;
    const Qt::KeyboardModifiers with = draw(3) == 0 ? Qt::ControlModifier : Qt::NoModifier;
    say(QString("%1 notches on %2").arg(notches).arg(widget->metaObject()->className()));
    QWheelEvent event(at, widget->mapToGlobal(at), {}, QPoint(0, 120 * notches), Qt::NoButton, with, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(widget, &event);
}

void RandomUser::changeLayout()
{
    MainWindow& window = session().driver().window();
    static const std::vector<const char*> docks = {"dockWidgetBottom", "dockWidgetRight"};
    if (draw(2) == 0) {
        const int width = static_cast<int>(draw(2000)) + 1;
        const int height = static_cast<int>(draw(1500)) + 1;
        say(QString("%1 x %2").arg(width).arg(height));
        window.resize(width, height);
        return;
    }
    auto* const dock = session().driver().child<QDockWidget>(pick(docks));
    say(QString("%1 %2").arg(dock->objectName(), dock->isFloating() ? "docks" : "floats"));
    dock->setFloating(!dock->isFloating());
}

void RandomUser::useTool()
{
    if (!session().features())
        return;
    const auto actions = session().features()->findChild<QToolBar*>()->actions();
    QAction* const action = actions[static_cast<int>(draw(static_cast<std::uint32_t>(actions.size())))];
    say(action->text());
    if (action->isVisible() && !action->isSeparator())
        action->trigger();
}

void RandomUser::triggerOpen()
{
    static_cast<void>(session().trigger("actionOpen"));
}

void RandomUser::wait()
{
    QTest::qWait(static_cast<int>(draw(60)));
}

std::vector<RandomUser::Action> RandomUser::windowActions()
{
    return {
        {18, "trigger an action", [this] { triggerAction(); }},
        {6, "open", [this] { triggerOpen(); }},
        {14, "key", [this] { pressKey(); }},
        {14, "mouse", [this] { click(); }},
        {6, "wheel", [this] { turnWheelAnywhere(); }},
        {5, "layout", [this] { changeLayout(); }},
        {6, "tool", [this] { useTool(); }},
        {3, "wait", [this] { wait(); }},
    };
}

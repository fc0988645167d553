// What the random user does, and what the camera does meanwhile.

#include "app/MainState.h"
#include "features/view/FeatureView.h"
#include "tests/attack/RandomCamera.h"
#include "tests/attack/RandomUser.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDockWidget>
#include <QKeyEvent>
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
    const auto children = m_session->driver().window().findChildren<QWidget*>();
    std::copy_if(children.begin(), children.end(), std::back_inserter(ordered),
                 [&](QWidget* child) { return std::find(visible.begin(), visible.end(), child) != visible.end(); });
    QWidget* const focus = QApplication::focusWidget();
    if (focus && draw(3) == 0)
        return focus;
    return ordered.empty() ? &m_session->driver().window() : pick(ordered);
}

QPoint RandomUser::anyPoint(const QWidget& widget, std::uint32_t random)
{
    return {static_cast<int>(random % static_cast<std::uint32_t>(widget.width())),
            static_cast<int>(random / 4096 % static_cast<std::uint32_t>(widget.height()))};
}

void RandomUser::triggerAction()
{
    static const std::vector<const char*> actions = {
        "actionClose",       "actionStart",       "actionStart",          "actionPause",
        "actionStop",        "actionZoomIn",      "actionZoomOut",        "actionNormalSize",
        "actionSnapshot",    "action_Menu_Open",  "action_Menu_Close",    "action_Menu_Start",
        "action_Menu_Pause", "action_Menu_Stop",  "action_Menu_One_Shot", "action_Menu_Zoom_In",
        "actionStart",       "action_Menu_About", "action_Menu_Zoom_Out", "action_Menu_Normal_Size",
        "actionStart",       "action_Menu_Start", "actionSoftwareTrigger"};
    const char* const action = draw(60) == 0 ? "action_Menu_Exit" : pick(actions);
    say(action);
    static_cast<void>(m_session->trigger(action));
}

void RandomUser::openCamera()
{
    static_cast<void>(m_session->trigger("actionOpen"));
}

void RandomUser::openHealthyCamera()
{
    scripted::healAll();
    scripted::setCameras(std::vector<scripted::CameraSpec>(2));
    static_cast<void>(m_session->open());
    if (draw(2) == 0)
        static_cast<void>(m_session->trigger("actionStart"));
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
    MainWindow& window = m_session->driver().window();
    static const std::vector<const char*> docks = {"dockWidgetBottom", "dockWidgetRight"};
    if (draw(2) == 0) {
        const int width = static_cast<int>(draw(2000)) + 1;
        const int height = static_cast<int>(draw(1500)) + 1;
        say(QString("%1 x %2").arg(width).arg(height));
        window.resize(width, height);
        return;
    }
    auto* const dock = m_session->driver().child<QDockWidget>(pick(docks));
    say(QString("%1 %2").arg(dock->objectName(), dock->isFloating() ? "docks" : "floats"));
    dock->setFloating(!dock->isFloating());
}

void RandomUser::useTool()
{
    if (!m_session->features())
        return;
    const auto actions = m_session->features()->findChild<QToolBar*>()->actions();
    QAction* const action = actions[static_cast<int>(draw(static_cast<std::uint32_t>(actions.size())))];
    say(action->text());
    if (action->isVisible() && !action->isSeparator())
        action->trigger();
}

void RandomUser::edit()
{
    if (!m_session->features())
        return;
    const QString feature = randomFeature(m_random);
    const QString text = randomText(m_random);
    say(feature + " = " + text);
    static_cast<void>(m_session->edit(feature, text));
}

void RandomUser::leaveEditorOpen()
{
    if (!m_session->features())
        return;
    const QString feature = randomFeature(m_random);
    say(feature);
    static_cast<void>(m_session->editor(feature));
}

void RandomUser::deliver()
{
    for (std::uint32_t left = draw(4) + 1; left > 0; --left) {
        switch (draw(8)) {
        case 0:
            static_cast<void>(scripted::deliverError(draw(0x10000)));
            break;
        case 1:
            static_cast<void>(scripted::deliverBusy(draw(8)));
            break;
        case 2:
            m_frame += draw(100000);
            [[fallthrough]];
        default:
            ++m_frame;
            static_cast<void>(
                scripted::deliverImage(m_frame, static_cast<std::uint8_t>(m_frame), draw(6) == 0 ? 19 : 0));
        }
    }
    QTest::qWait(static_cast<int>(draw(2)) * 30); // a period of the display, or none
}

void RandomUser::changeCamera()
{
    const QString what = changeRandomly(m_random);
    say(what);
}

void RandomUser::plug()
{
    switch (draw(4)) {
    case 0:
        say("unplug");
        scripted::unplug();
        break;
    case 1: {
        const std::uint32_t count = draw(4);
        say(QString("%1 cameras").arg(count));
        if (m_model->state() < MAIN_STATE_OPENED)
            scripted::setCameras(std::vector<scripted::CameraSpec>(count));
        break;
    }
    default:
        say("plug in");
        scripted::plugIn();
    }
}

void RandomUser::fail()
{
    // Not those that release something: after such a failure the scripted camera would keep what the viewer gave back.
    static const std::vector<const char*> operations = {"Sys_GetNumOfCameras",
                                                        "Cam_GetInformation",
                                                        "Sys_CreateSignal",
                                                        "Cam_Open",
                                                        "GetCamWidth",
                                                        "GetCamHeight",
                                                        "GetCamPixelFormat",
                                                        "Strm_OpenSimple",
                                                        "Strm_SetCallbackImageAcquired",
                                                        "Strm_SetCallbackImageError",
                                                        "Strm_SetCallbackBufferBusy",
                                                        "Strm_Start",
                                                        "Strm_Stop",
                                                        "Strm_GetCurrentBufferIndex",
                                                        "Strm_LockBuffer",
                                                        "ConvImage",
                                                        "GetCamIndexFromCamHandle",
                                                        "GetCamTriggerMode",
                                                        "GetCamTriggerSource",
                                                        "ExecuteCamSoftwareTrigger",
                                                        "Sys_GetInformation",
                                                        "Misc_GetLastGenICamError",
                                                        "Nd_GetNode",
                                                        "Nd_GetNumOfFeatures",
                                                        "Nd_GetFeatureByIndex",
                                                        "Nd_GetType",
                                                        "Nd_GetName",
                                                        "Nd_GetAccessMode",
                                                        "Nd_GetVisibility",
                                                        "Nd_GetDescription",
                                                        "Nd_GetToolTip",
                                                        "Nd_GetRepresentation",
                                                        "Nd_GetUnit",
                                                        "Nd_GetIntValue",
                                                        "Nd_GetIntMin",
                                                        "Nd_GetIntMax",
                                                        "Nd_GetIntInc",
                                                        "Nd_GetFloatValue",
                                                        "Nd_GetFloatMin",
                                                        "Nd_GetFloatMax",
                                                        "Nd_GetFloatInc",
                                                        "Nd_GetFloatHasInc",
                                                        "Nd_GetBoolValue",
                                                        "Nd_GetStrValue",
                                                        "Nd_GetEnumStrValue",
                                                        "Nd_GetEnumIntValue",
                                                        "Nd_GetNumOfEnumEntries",
                                                        "Nd_GetEnumEntryByIndex",
                                                        "Nd_GetEnumEntryStrValue",
                                                        "Nd_SetIntValue",
                                                        "Nd_SetFloatValue",
                                                        "Nd_SetBoolValue",
                                                        "Nd_SetStrValue",
                                                        "Nd_SetEnumStrValue",
                                                        "Nd_SetEnumIntValue",
                                                        "Nd_CmdExecute"};
    static const std::vector<Orvo::CAM_API_STATUS> statuses = {1, 13, 19, 258, 2055, 0xFFFFFFFF};
    const char* const operation = pick(operations);
    const Orvo::CAM_API_STATUS status = pick(statuses);
    const int nth = static_cast<int>(draw(10));
    say(QString("%1, call %2, status %3").arg(operation).arg(nth).arg(status));
    if (nth == 0) {
        scripted::failAlways(operation, status);
    } else {
        scripted::failCall(operation, status, nth);
    }
}

void RandomUser::heal()
{
    scripted::healAll();
}

void RandomUser::wait()
{
    const int time = static_cast<int>(draw(60));
    QTest::qWait(time);
}

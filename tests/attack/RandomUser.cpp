// A user who does anything, with a camera that does anything:
//
//     random_user [--actions N] [--seed N] [--stalls]    a sequence; by default the quick form; with --stalls no action
//                                                       may take the window more than 200 ms of processor time
//     random_user --seed N --only 3,17,40      some actions of a sequence, each printed
//
// The actions run in a process of their own. Each is drawn from the seed and its number alone, so that any of them can
// be left out: after a failure the program looks for the few that are enough, and prints them.

#include "app/MainState.h"
#include "discovery/DiscoveryDlg.h"
#include "display/DispThread.h"
#include "display/ImageView.h"
#include "features/view/FeatureView.h"
#include "tests/attack/Process.h"
#include "tests/attack/RandomCamera.h"
#include "tests/attack/ViewerSession.h"
#include "tests/attack/WindowModel.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDockWidget>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPointer>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTextDocument>
#include <QTextEdit>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
#include <QWheelEvent>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kQuickActions = 2000;
constexpr int kSessionActions = 250; // on average, until a new window takes over
constexpr int kTooManyLogLines = 300;

// What a window may hold beyond what the program holds without one.
constexpr int kMostThreads = 8;
constexpr int kMostDescriptors = 24;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double kLongestStallMs = 0; // not measured
#else
constexpr double kLongestStallMs = 200; // processor time; long form only, because cache contention adds to it
#endif

constexpr int kFound = 3; // exit status of a process that found something

double processorMs()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// --- Modal windows and popups ---------------------------------------------------------------------------------------

/// Acts in whatever modal window or popup an action has opened, and closes it after a while.
class Elsewhere : public QObject {
public:
    explicit Elsewhere(QString folder)
        : m_folder(std::move(folder))
    {
        startTimer(kPeriodMs);
    }

    /// Until the next call these decide what happens.
    void begin(std::uint32_t seed)
    {
        m_random.seed(seed);
        m_turns = 0;
    }

protected:
    void timerEvent(QTimerEvent* event) override
    {
        killTimer(event->timerId()); // restarted at once, because a window may open another one
        startTimer(kPeriodMs);
        QWidget* const modal = QApplication::activeModalWidget();
        QWidget* const popup = QApplication::activePopupWidget();
        if (!modal && !popup) {
            m_turns = 0;
            return;
        }
        const bool enough = ++m_turns > kPatience;
        if (popup) {
            if (enough || draw(3) == 0)
                popup->close();
            else
                press(*popup, draw(2) == 0 ? Qt::Key_Down : Qt::Key_Return);
        } else if (auto* const discovery = qobject_cast<DiscoveryDlg*>(modal)) {
            actIn(*discovery, enough);
        } else if (auto* const file = qobject_cast<QFileDialog*>(modal)) {
            actIn(*file, enough);
        } else if (auto* const dialog = qobject_cast<QDialog*>(modal)) {
            draw(2) == 0 ? dialog->reject() : dialog->accept();
        } else {
            modal->close();
        }
    }

private:
    static constexpr int kPeriodMs = 1;
    static constexpr int kPatience = 6;

    std::uint32_t draw(std::uint32_t below) { return static_cast<std::uint32_t>(m_random() % below); }

    static void press(QWidget& widget, Qt::Key key)
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &event);
    }

    void actIn(DiscoveryDlg& dialog, bool enough)
    {
        elapseTimers(dialog);
        auto* const list = dialog.findChild<QTreeWidget*>("discoveryWidget");
        auto* const open = dialog.findChild<QAbstractButton*>("openButton");
        switch (enough ? 0 : draw(12)) {
        case 0:
            dialog.reject();
            break;
        case 1:
            press(dialog, Qt::Key_Escape);
            break;
        case 2:
            dialog.findChild<QAbstractButton*>("PushButtonUpateCameraList")->click();
            break;
        case 3:
            list->clearSelection();
            open->click();
            break;
        default:
            if (const int count = list->topLevelItemCount(); count > 0)
                list->setCurrentItem(list->topLevelItem(static_cast<int>(draw(static_cast<std::uint32_t>(count)))));
            open->click();
        }
    }

    void actIn(QFileDialog& dialog, bool enough)
    {
        if (enough || draw(3) == 0) {
            dialog.reject();
            return;
        }
        const QString name = draw(4) == 0 ? "/nowhere/shot.png" : m_folder + QString("/shot%1.png").arg(draw(3));
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText(name);
        QMetaObject::invokeMethod(&dialog, "accept");
    }

    QString m_folder;
    std::minstd_rand m_random;
    int m_turns = 0;
};

// --- The user -------------------------------------------------------------------------------------------------------

class RandomUser {
public:
    RandomUser(std::uint32_t seed, bool prints, bool judgesStalls);
    ~RandomUser();
    Q_DISABLE_COPY_MOVE(RandomUser)

    /// What is wrong after the action with this number.
    [[nodiscard]] QStringList act(int number);
    /// Ends the last window.
    [[nodiscard]] QStringList finish();

private:
    using Action = void (RandomUser::*)();

    void newWindow();
    QStringList endWindow();
    [[nodiscard]] QStringList invariants();

    std::uint32_t draw(std::uint32_t below) { return static_cast<std::uint32_t>(m_random() % below); }
    template <typename T> const T& pick(const std::vector<T>& from)
    {
        return from[draw(static_cast<std::uint32_t>(from.size()))];
    }
    void say(const QString& what)
    {
        if (m_prints)
            std::printf("    %s\n", qPrintable(what));
    }
    [[nodiscard]] QWidget* anyWidget();
    [[nodiscard]] static QPoint anyPoint(const QWidget& widget, std::uint32_t random);

    void triggerAction();
    void openCamera();
    void openHealthyCamera();
    void pressKey();
    void click();
    void turnWheelAnywhere();
    void changeLayout();
    void useTool();
    void edit();
    void leaveEditorOpen();
    void deliver();
    void changeCamera();
    void plug();
    void fail();
    void heal();
    void wait();

    std::uint32_t m_seed;
    bool m_prints;
    bool m_judgesStalls;
    std::minstd_rand m_random;
    QTemporaryDir m_folder;
    Elsewhere m_elsewhere{m_folder.path()};
    process::Held m_without;
    std::unique_ptr<ViewerSession> m_session;
    std::unique_ptr<WindowModel> m_model;
    std::uint64_t m_frame = 0;
    std::map<int, int> m_actionsInState;
};

RandomUser::RandomUser(std::uint32_t seed, bool prints, bool judgesStalls)
    : m_seed(seed)
    , m_prints(prints)
    , m_judgesStalls(judgesStalls)
    , m_without(process::held())
{
    newWindow();
}

RandomUser::~RandomUser()
{
    static_cast<void>(endWindow());
}

void RandomUser::newWindow()
{
    scripted::reset();
    scripted::setCameras(std::vector<scripted::CameraSpec>(2));
    m_session = std::make_unique<ViewerSession>();
    m_model = std::make_unique<WindowModel>(m_session->driver());
    m_model->compareOnlyFormOfLog();
    QApplication::setActiveWindow(&m_session->driver().window());
}

QStringList RandomUser::endWindow()
{
    if (!m_session)
        return {};
    m_model.reset();
    m_session->exit();
    m_session.reset();
    QStringList wrong;
    if (const auto left = QApplication::allWidgets(); !left.isEmpty())
        wrong << QString("%1 widgets outlive the window, one of them a %2")
                     .arg(left.size())
                     .arg(left.first()->metaObject()->className());
    if (scripted::streaming())
        wrong << "the stream outlives the window";
    return wrong;
}

QStringList RandomUser::finish()
{
    std::printf("without camera %d actions, with one %d, with a stream %d\n", m_actionsInState[MAIN_STATE_IDLE],
                m_actionsInState[MAIN_STATE_OPENED], m_actionsInState[MAIN_STATE_ACQUIRING]);
    return endWindow();
}

QStringList RandomUser::invariants()
{
    QStringList wrong = m_model->check();
    m_model->forgetCalls();
    ++m_actionsInState[m_model->state()];
    const MainWindow& window = m_session->driver().window();
    const bool open = m_model->state() >= MAIN_STATE_OPENED;
    if (window.findChildren<DispThread*>().size() != (m_model->state() == MAIN_STATE_ACQUIRING ? 1 : 0))
        wrong << QString("%1 display threads in state %2")
                     .arg(window.findChildren<DispThread*>().size())
                     .arg(m_model->state());
    if (window.findChildren<FeatureView*>().size() != (open ? 1 : 0))
        wrong << QString("%1 feature browsers").arg(window.findChildren<FeatureView*>().size());
    if (window.findChildren<ImageView*>().size() > 1)
        wrong << QString("%1 image views").arg(window.findChildren<ImageView*>().size());
    wrong << m_session->wrongRows(false);
    const process::Held held = process::held();
    if (held.threads > m_without.threads + kMostThreads)
        wrong << QString("%1 threads").arg(held.threads);
    if (held.descriptors > m_without.descriptors + kMostDescriptors)
        wrong << QString("%1 descriptors").arg(held.descriptors);
    return wrong;
}

QStringList RandomUser::act(int number)
{
    struct Choice {
        int weight;
        const char* name;
        Action action;
    };
    static const std::vector<Choice> choices = {
        {18, "trigger an action", &RandomUser::triggerAction},
        {6, "open", &RandomUser::openCamera},
        {14, "key", &RandomUser::pressKey},
        {14, "mouse", &RandomUser::click},
        {6, "wheel", &RandomUser::turnWheelAnywhere},
        {5, "layout", &RandomUser::changeLayout},
        {6, "tool", &RandomUser::useTool},
        {12, "edit", &RandomUser::edit},
        {4, "leave an editor open", &RandomUser::leaveEditorOpen},
        {12, "images", &RandomUser::deliver},
        {8, "change the camera", &RandomUser::changeCamera},
        {3, "plug", &RandomUser::plug},
        {6, "fail", &RandomUser::fail},
        {4, "heal", &RandomUser::heal},
        {3, "wait", &RandomUser::wait},
    };
    int total = 0;
    for (const Choice& choice : choices)
        total += choice.weight;

    std::seed_seq seeds{m_seed, static_cast<std::uint32_t>(number)};
    std::vector<std::uint32_t> seed(2);
    seeds.generate(seed.begin(), seed.end());
    m_random.seed(seed[0]);
    m_elsewhere.begin(seed[1]);

    QStringList wrong;
    if (draw(kSessionActions) == 0 || !m_session->driver().window().isVisible()) {
        wrong = endWindow();
        newWindow();
    }
    int at = static_cast<int>(draw(static_cast<std::uint32_t>(total)));
    auto choice = choices.begin();
    while (at >= choice->weight)
        at -= (choice++)->weight;
    if (m_prints)
        std::printf("%d %s\n", number, choice->name);
    const double before = processorMs();
    if (m_model->state() < MAIN_STATE_OPENED && draw(2) == 0) {
        openHealthyCamera(); // otherwise most actions would find no camera
        handleEvents();
        wrong << invariants(); // before the camera changes
    }
    (this->*choice->action)();
    handleEvents();
    const double stall = processorMs() - before;
    // Opening and saving a file take what the toolkit takes for their dialogs.
    if (m_judgesStalls && kLongestStallMs > 0 && stall > kLongestStallMs)
        wrong << QString("%1 ms of processor time").arg(stall);
    if (m_session->driver().child<QTextEdit>("messageLogEdit")->document()->blockCount() > kTooManyLogLines)
        m_session->driver().clearLog();
    return wrong + invariants();
}

// --- What a user does -----------------------------------------------------------------------------------------------

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

// --- What a camera does ---------------------------------------------------------------------------------------------

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
    if (nth == 0)
        scripted::failAlways(operation, status);
    else
        scripted::failCall(operation, status, nth);
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

// --- Both processes -------------------------------------------------------------------------------------------------

struct Task {
    std::uint32_t seed = 1;
    std::vector<int> actions;
    bool prints = false;
    bool judgesStalls = false;
};

/// In the process of the user: what was found, to standard output; the exit status.
int perform(const Task& task)
{
    RandomUser user(task.seed, task.prints, task.judgesStalls);
    for (const int number : task.actions) {
        const QStringList wrong = user.act(number);
        if (!wrong.isEmpty()) {
            std::printf("after action %d: %s\n", number, qPrintable(wrong.join("\n  ")));
            return kFound;
        }
    }
    const QStringList wrong = user.finish();
    for (const QString& line : wrong)
        std::printf("at the end: %s\n", qPrintable(line));
    return wrong.isEmpty() ? EXIT_SUCCESS : kFound;
}

QString listOf(const std::vector<int>& actions)
{
    QStringList texts;
    for (std::size_t i = 0; i < actions.size(); ++i) {
        const std::size_t first = i;
        while (i + 1 < actions.size() && actions[i + 1] == actions[i] + 1)
            ++i;
        texts << (first == i ? QString::number(actions[i]) : QString("%1-%2").arg(actions[first]).arg(actions[i]));
    }
    return texts.join(',');
}

std::vector<int> actionsOf(const QString& list)
{
    std::vector<int> actions;
    for (const QString& part : list.split(',')) {
        const QStringList ends = part.split('-');
        for (int number = ends.first().toInt(); number <= ends.last().toInt(); ++number)
            actions.push_back(number);
    }
    return actions;
}

/// Runs the actions in a process of their own.
class Trial {
public:
    explicit Trial(const Task& task, int patienceMs)
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(QCoreApplication::applicationFilePath(),
                        {"--seed", QString::number(task.seed), "--only", listOf(task.actions),
                         task.prints ? "--print" : "--silent", task.judgesStalls ? "--stalls" : "--no-stalls"});
        m_ended = m_process.waitForFinished(patienceMs);
        if (!m_ended) {
            m_process.kill();
            m_process.waitForFinished();
        }
        m_output = m_process.readAll();
    }

    [[nodiscard]] bool passed() const
    {
        return m_ended && m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == EXIT_SUCCESS;
    }
    [[nodiscard]] QByteArray output() const { return m_ended ? m_output : m_output + "it does not end\n"; }

private:
    QProcess m_process;
    bool m_ended = false;
    QByteArray m_output;
};

/// Leaves out as many actions as possible, in blocks that become smaller.
std::vector<int> shrink(Task task)
{
    constexpr int mostTrials = 200;
    constexpr int patienceMs = 300000;
    int trials = 0;
    for (std::size_t block = task.actions.size() / 2; block > 0; block /= 2) {
        for (std::size_t at = 0; at < task.actions.size() && trials < mostTrials;) {
            Task shorter = task;
            const auto begin = shorter.actions.begin() + static_cast<std::ptrdiff_t>(at);
            const auto left = static_cast<std::ptrdiff_t>(std::min(block, shorter.actions.size() - at));
            shorter.actions.erase(begin, begin + left);
            ++trials;
            if (!shorter.actions.empty() && !Trial(shorter, patienceMs).passed())
                task.actions = shorter.actions;
            else
                at += block;
        }
    }
    return task.actions;
}

int supervise(Task task)
{
    constexpr int chunk = 20000; // actions of one process
    QElapsedTimer timer;
    timer.start();
    const std::vector<int> all = task.actions;
    for (std::size_t first = 0; first < all.size(); first += chunk) {
        const auto begin = all.begin() + static_cast<std::ptrdiff_t>(first);
        task.actions.assign(begin,
                            begin + static_cast<std::ptrdiff_t>(std::min<std::size_t>(chunk, all.size() - first)));
        const Trial trial(task, -1);
        if (trial.passed()) {
            std::printf("%s", trial.output().constData());
            std::fflush(stdout);
            continue;
        }
        std::printf("%s\nLooking for the actions that are enough ...\n", trial.output().constData());
        std::fflush(stdout);
        // What comes after the failure is not needed.
        const QRegularExpressionMatch last = QRegularExpression("after action (\\d+):").match(trial.output());
        if (last.hasMatch()) {
            const int number = last.captured(1).toInt();
            task.actions.erase(std::remove_if(task.actions.begin(), task.actions.end(),
                                              [number](int action) { return action > number; }),
                               task.actions.end());
        }
        task.actions = shrink(task);
        task.prints = true;
        std::printf("random_user --seed %u --only %s\n%s", task.seed, qPrintable(listOf(task.actions)),
                    Trial(task, -1).output().constData());
        return EXIT_FAILURE;
    }
    std::printf("random user: %zu actions of seed %u, nothing wrong, %lld s\n", all.size(), task.seed,
                static_cast<long long>(timer.elapsed() / 1000));
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    const AttackApplication application(argc, argv);
    Task task;
    int count = kQuickActions;
    const QStringList arguments = QCoreApplication::arguments();
    task.judgesStalls = arguments.contains("--stalls");
    const auto value = [&arguments](const char* option) {
        const int at = arguments.indexOf(option);
        return at < 0 || at + 1 >= arguments.size() ? QString() : arguments[at + 1];
    };
    if (!value("--seed").isEmpty())
        task.seed = value("--seed").toUInt();
    if (!value("--actions").isEmpty())
        count = value("--actions").toInt();
    if (!value("--only").isEmpty()) {
        task.actions = actionsOf(value("--only"));
        task.prints = !arguments.contains("--silent");
        std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); // a crash must not swallow what was printed
        return perform(task);
    }
    for (int number = 0; number < count; ++number)
        task.actions.push_back(number);
    return supervise(task);
}

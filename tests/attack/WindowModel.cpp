#include "tests/attack/WindowModel.h"

#include "camera/StatusName.h"
#include "tests/support/EnableTable.h"

#include <QAction>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace {

constexpr int kIdle = 1;
constexpr int kOpening = 2;
constexpr int kOpened = 3;
constexpr int kAcquiring = 5;
constexpr int kParameters = 3; // width, height, pixel format

constexpr const char* kGenICamError = "Scripted GenICam error"; // the description of every scripted error

/// The operations whose failure the window reports, and the title of the line. All others fail in silence.
constexpr std::pair<std::string_view, const char*> kTitles[] = {
    {"Sys_Initialize", "Sys_Initialize error!"},
    {"PrepareLUT", "PrepareLUT error!"},
    {"Sys_GetNumOfCameras", "Sys_GetNumOfCameras()"},
    {"Cam_GetInformation", "Cam_GetInformation()"},
    {"Cam_Open", "Error Cam_Open()"},
    {"GetCamWidth", "Error image width."},
    {"GetCamHeight", "Error image height."},
    {"GetCamPixelFormat", "Error image pixel format."},
    {"Strm_OpenSimple", "Strm_OpenSimple()"},
    {"Strm_SetCallbackImageAcquired", "Strm_SetCallbackImageAcquired()"},
    {"Strm_SetCallbackImageError", "Strm_SetCallbackImageError()"},
    {"Strm_SetCallbackBufferBusy", "Strm_SetCallbackBufferBusy()"},
    {"Strm_Start", "Error stream start."},
    {"Strm_Stop", "Error stop acquisition."},
    {"ExecuteCamSoftwareTrigger", "Error execute S/W trigger."},
};

/// Every form of a line that the log may contain.
const QRegularExpression& lineForm()
{
    static const QRegularExpression form(R"(^(ERROR: [^\[]+ \[(CAM_API_STS_\w+ ?|UNKNOWN)\])"
                                         R"(|  GenICam Error description: .*|A camera has been Removed\.)"
                                         R"(|CallBackErrorImage\. \(status = 0x[0-9A-F]+\))"
                                         R"(|CallbackBufferBusy\. \(uiBufferIndex = \d+\)|Cannot save a file\.)$)");
    return form;
}

/// Where one of these fails the camera is closed.
bool isNeededToStart(const std::string& operation)
{
    return operation == "Strm_OpenSimple" || operation == "Strm_Start" || operation.rfind("Strm_SetCallback", 0) == 0;
}

bool succeeded(const scripted::Call& call)
{
    return call.result == Orvo::CAM_API_STS_SUCCESS;
}

} // namespace

WindowModel::WindowModel(WindowDriver& driver)
    : m_driver(driver)
{
    for (const EnableRow& row : kEnableTable) {
        const std::string name = row.action;
        m_enabled[name] = name == "actionOpen" || name == "action_Menu_Open" || name == "action_Menu_Exit" ||
                          name == "action_Menu_About"; // as the form says
        QObject::connect(driver.action(row.action), &QAction::triggered, &m_receiver, [this, name] {
            m_events.push_back({scripted::callCount(), name});
        });
    }
    static_cast<void>(check());
}

void WindowModel::expectCallbackLine(const QString& line)
{
    for (int i = 0; i < m_openings; ++i)
        m_log << line;
}

void WindowModel::expectRemoval()
{
    m_removed = true;
    m_log << "A camera has been Removed.";
}

void WindowModel::enter(int state)
{
    m_state = state;
    for (const EnableRow& row : kEnableTable) {
        bool& enabled = m_enabled[row.action];
        enabled = enabledBy(row.states[state - 1], enabled, m_scale);
    }
}

void WindowModel::closed()
{
    m_scale = 1.0;
    m_removed = false;
    m_readsParameters = false;
    enter(kIdle);
}

void WindowModel::zoom(double factor)
{
    m_scale *= factor;
    for (const char* action : {"actionZoomIn", "action_Menu_Zoom_In"})
        m_enabled[action] = m_scale < 8.0;
    m_enabled["actionZoomOut"] = m_scale > 0.25;
    m_enabled["actionNormalSize"] = m_scale != 1.0;
    m_enabled["action_Menu_Zoom_Out"] = m_scale != 1.0;
}

void WindowModel::expectError(const scripted::Call& call, const char* title)
{
    m_log << QString("ERROR: %1 [%2]").arg(title, cameraStatusName(call.result));
}

void WindowModel::takeCall(const scripted::Call& call)
{
    const std::string& operation = call.operation;
    const bool ok = succeeded(call);
    const auto* const title = std::find_if(std::begin(kTitles), std::end(kTitles),
                                           [&](const auto& entry) { return entry.first == operation; });
    if (!ok && !m_removed && title != std::end(kTitles))
        expectError(call, title->second);

    if (operation == "PrepareLUT") {
        if (ok)
            enter(kIdle);
    } else if (operation == "Cam_Open") {
        enter(kOpening);
        m_describes = !ok && call.result == Orvo::CAM_API_STS_GENICAM_ERR;
        m_readsParameters = ok;
        m_parametersRead = 0;
        if (!ok)
            enter(kIdle);
    } else if (operation == "Misc_GetLastGenICamError") {
        if (m_describes && ok)
            m_log << QString("  GenICam Error description: ") + kGenICamError;
        m_describes = false;
    } else if (m_readsParameters && title != std::end(kTitles) && operation.rfind("GetCam", 0) == 0) {
        if (!ok) {
            m_log << "ERROR: Error Cam_Open() [CAM_API_STS_SUCCESS]";
            closed();
        } else if (++m_parametersRead == kParameters) {
            m_readsParameters = false;
            enter(kOpened);
        }
    } else if (operation == "Cam_Close" || (!ok && isNeededToStart(operation))) {
        closed();
    } else if (operation == "Strm_Start") {
        m_enabled["actionStart"] = false;
        enter(kAcquiring);
    } else if (operation == "Strm_Stop") {
        enter(kOpened);
    } else if (operation == "GetCamTriggerMode" || operation == "GetCamTriggerSource") {
        const scripted::Trigger trigger = scripted::trigger();
        const bool wanted =
            operation == "GetCamTriggerMode" ? trigger.on : trigger.source == Orvo::CAM_TRIGGER_SOURCE_SOFTWARE;
        for (const char* action : {"actionSoftwareTrigger", "action_Menu_One_Shot"})
            m_enabled[action] = ok && wanted && m_state == kAcquiring;
    }
}

void WindowModel::takeAction(const std::string& action)
{
    if (action == "actionOpen" || action == "action_Menu_Open") {
        ++m_openings;
        if (m_state < kOpened)
            enter(kIdle);
    } else if (action == "actionStop" || action == "action_Menu_Stop") {
        if (m_state >= kOpened)
            enter(kOpened);
    } else if (action == "actionClose" || action == "action_Menu_Close") {
        closed();
    } else if (action == "actionZoomIn" || action == "action_Menu_Zoom_In") {
        zoom(2.0);
    } else if (action == "actionZoomOut" || action == "action_Menu_Zoom_Out") {
        zoom(0.5);
    } else if (action == "actionNormalSize" || action == "action_Menu_Normal_Size") {
        m_scale = 1.0;
        zoom(1.0);
    }
}

QStringList WindowModel::check()
{
    for (const scripted::Call& call : scripted::callsFrom(m_seenCalls)) {
        for (; !m_events.empty() && m_events.front().callsBefore <= m_seenCalls; m_events.pop_front())
            takeAction(m_events.front().action);
        takeCall(call);
        ++m_seenCalls;
    }
    for (; !m_events.empty(); m_events.pop_front())
        takeAction(m_events.front().action);

    QStringList differences;
    for (const auto& [action, enabled] : m_enabled) {
        if (m_driver.enabled(action.c_str()) != enabled)
            differences << QString("%1 is %2").arg(action.c_str(), enabled ? "off" : "on");
    }
    const QStringList log = m_driver.log();
    if (m_compareLog && log != m_log)
        differences << "the log is\n    " + log.join("\n    ") + "\n  instead of\n    " + m_log.join("\n    ");
    for (const QString& line : log) {
        if (!lineForm().match(line).hasMatch())
            differences << "a line that nothing writes: " + line;
    }
    return differences;
}

void WindowModel::forgetCalls()
{
    scripted::clearCalls();
    m_seenCalls = 0;
}

QStringList unreleased(const std::vector<scripted::Call>& calls)
{
    struct Pair {
        const char* what;
        std::string_view acquire;
        std::string_view release;
    };
    constexpr Pair kPairs[] = {
        {"cameras", "Cam_Open", "Cam_Close"},
        {"signals", "Sys_CreateSignal", "Sys_CloseSignal"},
        {"streams", "Strm_OpenSimple", "Strm_Close"},
    };
    QStringList complaints;
    for (const Pair& pair : kPairs) {
        const auto acquired = std::count_if(calls.begin(), calls.end(), [&](const scripted::Call& call) {
            return call.operation == pair.acquire && succeeded(call);
        });
        const auto released = std::count_if(calls.begin(), calls.end(),
                                            [&](const scripted::Call& call) { return call.operation == pair.release; });
        if (acquired != released)
            complaints << QString("%1: %2 acquired, %3 released").arg(pair.what).arg(acquired).arg(released);
    }
    const auto count = [&](std::string_view operation) {
        return std::count_if(calls.begin(), calls.end(),
                             [&](const scripted::Call& call) { return call.operation == operation; });
    };
    if (count("Strm_LockBuffer") != count("Strm_UnlockBuffer"))
        complaints << "a buffer stays locked";
    if (count("Sys_Terminate") != 1)
        complaints << "the library is not terminated once";
    return complaints;
}

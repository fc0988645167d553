#pragma once

#include "tests/support/ScriptedCamera.h"
#include "tests/support/WindowDriver.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <vector>

/// What the window must show, derived from nothing but the actions that the user triggered and the camera calls that
/// the scripted camera recorded. Follows one window from its construction on.
class WindowModel {
public:
    explicit WindowModel(WindowDriver& driver);

    /// Takes what happened since the last time and compares actions and log of the window. No event may be pending.
    /// Each entry of the result is a difference; none means that the window is right.
    [[nodiscard]] QStringList check();

    /// Drops the recorded calls, which would fill the memory; right after check().
    void forgetCalls();

    /// 1 idle, 3 opened, 5 acquiring; 0 while the library could not be initialised.
    [[nodiscard]] int state() const { return m_state; }
    /// Expects a callback's line, once per opening of the discovery dialog so far.
    void expectCallbackLine(const QString& line);
    /// The display thread will notice that the camera is gone. Failures while it is closed are not logged.
    void expectRemoval();

    /// The log is compared by default. Where faults and removals meet by chance, only its form is checked.
    void compareOnlyFormOfLog() { m_compareLog = false; }

private:
    struct Event {
        std::size_t callsBefore;
        std::string action;
    };

    void takeCall(const scripted::Call& call);
    void takeAction(const std::string& action);
    void enter(int state);
    void closed();
    void zoom(double factor);
    void expectError(const scripted::Call& call, const char* title);

    WindowDriver& m_driver;
    QObject m_receiver; // of the signals of the actions
    std::deque<Event> m_events;
    std::size_t m_seenCalls = 0;

    std::map<std::string, bool> m_enabled;
    int m_state = 0;
    double m_scale = 1.0;
    int m_openings = 0;
    int m_parametersRead = 0; // since the camera was opened; 3 when it is complete
    bool m_removed = false;   // and the camera not yet closed
    bool m_readsParameters = false;
    bool m_describes = false; // Cam_Open failed with a description to follow
    bool m_compareLog = true;
    QStringList m_log;
};

/// Every resource that the calls acquired and never gave back, in words. The whole session must be recorded.
[[nodiscard]] QStringList unreleased(const std::vector<scripted::Call>& calls);

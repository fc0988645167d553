#pragma once

#include "cameralibs/transport/Channel.h"
#include "cameralibs/transport/connection/OpenedCamera.h"

#include <map>
#include <mutex>
#include <thread>

namespace cameralibs::transport {

/// Serves the library's requests, one at a time, until the library closes the control channel or exits.
class Session {
public:
    Session(Descriptor control, Descriptor events);

    /// Releases the camera at the end and exits, within a second even if Aravis is still waiting for the camera.
    [[noreturn]] void run();

private:
    void watchLibrary();
    [[nodiscard]] bool answer(Packet& packet);
    [[nodiscard]] bool answerHello(const Hello& hello);
    [[nodiscard]] bool answerOpen(const Open& open);
    [[nodiscard]] bool answerDescribe(const Describe& describe);
    [[nodiscard]] bool answerRead(const Read& read);
    [[nodiscard]] bool listCamerasFor(const Enumerate& kinds);
    [[nodiscard]] bool finish(const Outcome& outcome);
    [[nodiscard]] bool finish(const OpenedCamera::Access& access, std::string_view bytes = {});
    void reportProgress(Answer answer);
    template <class Body> [[nodiscard]] bool reply(Kind kind, const Body& body, std::string_view data);

    bool m_greeted = false; ///< by a library of the same build
    Channel m_control;
    Channel m_events;
    std::mutex m_mutex;                                 ///< guards sending replies and the two members below
    bool m_asked = false;                               ///< a reply is still to be sent
    std::map<Answer, Clock::time_point> m_lastProgress; ///< of this request
    OpenedCamera m_camera;
};

} // namespace cameralibs::transport

#include "cameralibs/devices/Device.h"

#include "cameralibs/base/Log.h"
#include "cameralibs/devices/transport/Connection.h"
#include "cameralibs/devices/transport/TransportDevice.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <tuple>
#include <utility>

namespace cameralibs {

using namespace Orvo;
using namespace transport;

namespace {

/// A search takes 1 s, or 2 s if answers keep arriving; the start of the transport is included.
constexpr std::chrono::seconds kSearchLimit{Connection::kSanitized ? 10 : 4};
constexpr Connection::Limits kSearch{kSearchLimit, kSearchLimit};

/// A slow camera takes several seconds to send a large description.
constexpr std::chrono::seconds kOpeningLimit{20};
constexpr Connection::Limits kOpen{std::chrono::seconds(3), kOpeningLimit};

/// Limits the effect of answers from cameras that do not exist.
constexpr std::size_t kMaxCameras = 1000;

class TransportProvider : public DeviceProvider {
public:
    TransportProvider(bool usb, bool gige)
        : m_kinds{usb ? 1U : 0U, gige ? 1U : 0U}
    {
    }

    [[nodiscard]] std::vector<DeviceInfo> enumerate() override
    {
        std::vector<DeviceInfo> found;
        m_listed.clear();
        std::shared_ptr<Connection> connection;
        if (const Outcome outcome = connect({}, kSearchLimit, connection); !outcome.ok()) {
            log(Severity::warning, {}, "No real cameras are listed: " + outcome.text);
            return found;
        }
        std::size_t told = 0;
        const bool whole = connection->request(Kind::enumerate, m_kinds, kSearch, [&](const Packet& reply) {
            if (reply.body<Done>(Kind::done))
                return Connection::ReplyKind::last;
            const auto camera = reply.body<transport::Listed>(Kind::listed);
            return camera && ++told <= kMaxCameras && add(*camera, found) ? Connection::ReplyKind::more
                                                                          : Connection::ReplyKind::invalid;
        });
        if (!whole)
            log(Severity::warning, {}, "The search for cameras ended early: " + connection->reasonOfLoss());
        // The order of Aravis changes from one search to the next.
        std::sort(found.begin(), found.end(), [](const DeviceInfo& a, const DeviceInfo& b) {
            return std::tie(a.link, a.id) < std::tie(b.link, b.id);
        });
        return found;
    }

    [[nodiscard]] Outcome open(const std::string& id, std::unique_ptr<Device>& device) override
    {
        const auto listed = m_listed.find(id);
        if (listed == m_listed.end())
            return {CAM_API_STS_CAMERA_NOT_RESPONDING, "The last search did not find the camera"};
        const auto& [info, name] = listed->second;
        std::shared_ptr<Connection> connection;
        Outcome outcome = connect(info.logName(), kOpeningLimit, connection);
        if (!outcome.ok())
            return outcome;
        transport::Open open{};
        open.link = info.link;
        setText(open.name, name);
        outcome = connection->requestDone(Kind::open, open, kOpen);
        if (outcome.ok())
            device = std::make_unique<TransportDevice>(info, std::move(connection));
        return outcome;
    }

    void cancel() override
    {
        const std::lock_guard lock(m_mutex);
        m_cancelled = true;
        if (const auto connection = m_current.lock())
            connection->cancel();
    }

private:
    /// `limit` applies until relax() is called.
    [[nodiscard]] Outcome connect(const std::string& camera, std::chrono::seconds limit,
                                  std::shared_ptr<Connection>& connection)
    {
        connection = std::make_shared<Connection>(camera);
        connection->hurry(Clock::now() + limit);
        {
            const std::lock_guard lock(m_mutex);
            if (m_cancelled)
                return {CAM_API_STS_NOT_INITIALIZED, {}};
            m_current = connection;
        }
        return connection->open();
    }

    /// False if it is no camera of these kinds.
    [[nodiscard]] bool add(const transport::Listed& camera, std::vector<DeviceInfo>& found)
    {
        const bool usb = camera.link == CAM_LINK_USB3_VISION;
        if (!usb && camera.link != CAM_LINK_GIGE_VISION)
            return false;
        DeviceInfo info{static_cast<CAM_LINK>(camera.link),
                        textOf(camera.id),
                        textOf(camera.vendor),
                        textOf(camera.model),
                        textOf(camera.serial),
                        {}};
        // Opened by its address, a camera is reached through the right network interface.
        const std::string address = textOf(camera.address);
        const bool inserted = m_listed.insert({info.id, {info, usb || address.empty() ? info.id : address}}).second;
        if (inserted)
            found.push_back(std::move(info));
        return true;
    }

    struct Known {
        DeviceInfo info;
        std::string name; ///< for opening
    };
    const Enumerate m_kinds;
    std::map<std::string, Known> m_listed; ///< by id

    std::mutex m_mutex; ///< guards the members below
    bool m_cancelled = false;
    std::weak_ptr<Connection> m_current; ///< the newest one; a thread may be waiting for it
};

} // namespace

std::unique_ptr<DeviceProvider> makeTransportProvider(bool usb, bool gige)
{
    return std::make_unique<TransportProvider>(usb, gige);
}

} // namespace cameralibs

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

/// It takes a second; a network that keeps answering gets no more than this, the start of the transport included.
constexpr std::chrono::seconds kSearchLimit{Connection::kSanitized ? 10 : 4};
constexpr Connection::Limits kSearch{kSearchLimit, kSearchLimit};

/// A slow camera needs several seconds for a large description.
constexpr std::chrono::seconds kOpeningLimit{20};
constexpr Connection::Limits kOpen{std::chrono::seconds(3), kOpeningLimit};

/// Nobody has as many; a network that makes them up gets no further.
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
                return Connection::Heard::last;
            const auto camera = reply.body<transport::Listed>(Kind::listed);
            return camera && ++told <= kMaxCameras && add(*camera, found) ? Connection::Heard::more
                                                                          : Connection::Heard::wrong;
        });
        if (!whole)
            log(Severity::warning, {}, "The search for cameras ended early");
        // Aravis' own order changes from one time to the next.
        std::sort(found.begin(), found.end(), [](const DeviceInfo& a, const DeviceInfo& b) {
            return std::tie(a.link, a.id) < std::tie(b.link, b.id);
        });
        return found;
    }

    [[nodiscard]] Outcome open(const std::string& id, std::unique_ptr<Device>& device) override
    {
        const auto listed = m_listed.find(id);
        if (listed == m_listed.end())
            return {CAM_API_STS_CAMERA_NOT_RESPONDING, "The camera was not there when cameras were last looked for"};
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
    /// The limit is that of all that is done until the connection is relaxed.
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

    /// False for what is no camera of these kinds.
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
        // By its address a camera is reached through the network interface that leads to it.
        const std::string address = textOf(camera.address);
        const bool inserted = m_listed.insert({info.id, {info, usb || address.empty() ? info.id : address}}).second;
        if (inserted)
            found.push_back(std::move(info));
        return true;
    }

    struct Known {
        DeviceInfo info;
        std::string name; ///< that it is opened by
    };
    const Enumerate m_kinds;
    std::map<std::string, Known> m_listed; ///< by id

    std::mutex m_mutex; ///< guards what follows
    bool m_cancelled = false;
    std::weak_ptr<Connection> m_current; ///< the last one that was made, whose user may be waiting for it
};

} // namespace

std::unique_ptr<DeviceProvider> makeTransportProvider(bool usb, bool gige)
{
    return std::make_unique<TransportProvider>(usb, gige);
}

} // namespace cameralibs

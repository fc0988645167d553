#include "SimulatedProvider.h"

#include "cameralibs/devices/simulated/Attachment.h"
#include "cameralibs/devices/simulated/CameraModel.h"
#include "cameralibs/devices/simulated/SimulatedDevice.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace orvo {

namespace {

using namespace simulated;

struct Camera {
    const CameraModel* model;
    DeviceInfo info;
    std::shared_ptr<Attachment> attachment;
};

class SimulatedProvider : public DeviceProvider {
public:
    explicit SimulatedProvider(std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            const CameraModel& model = kCameraModels[i % kCameraModels.size()];
            const std::string serial = "SIM-" + std::to_string(i + 1);
            m_cameras.push_back({&model,
                                 {Orvo::CAM_LINK_SIMULATED, serial, "Simulated", std::string(model.name), serial, ""},
                                 std::make_shared<Attachment>()});
        }
    }

    [[nodiscard]] std::vector<DeviceInfo> enumerate() override
    {
        std::vector<DeviceInfo> attached;
        for (const Camera& camera : m_cameras) {
            if (camera.attachment->isPlugged())
                attached.push_back(camera.info);
        }
        return attached;
    }

    [[nodiscard]] Outcome open(const std::string& id, std::unique_ptr<Device>& device) override
    {
        const auto camera = std::find_if(m_cameras.begin(), m_cameras.end(),
                                         [&](const Camera& candidate) { return candidate.info.id == id; });
        if (camera == m_cameras.end() || !camera->attachment->isPlugged())
            return {Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING, ""};
        device = std::make_unique<SimulatedDevice>(*camera->model, camera->info, camera->attachment);
        return {};
    }

private:
    std::vector<Camera> m_cameras;
};

} // namespace

std::unique_ptr<DeviceProvider> makeSimulatedProvider(const char* environmentValue)
{
    std::size_t count = kCameraModels.size();
    if (environmentValue != nullptr)
        count = static_cast<std::size_t>(std::strtoul(environmentValue, nullptr, 10));
    return std::make_unique<SimulatedProvider>(count);
}

} // namespace orvo

#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/simulated/SimulatedDescription.h"
#include "cameralibs/devices/simulated/file/FileCamera.h"
#include "cameralibs/devices/simulated/images/Acquisition.h"
#include "cameralibs/devices/simulated/images/DeviceClock.h"
#include "cameralibs/devices/simulated/images/FrameGenerator.h"
#include "cameralibs/devices/simulated/registers/Attachment.h"
#include "cameralibs/devices/simulated/registers/CameraModel.h"
#include "cameralibs/devices/simulated/registers/CameraRegisters.h"
#include "cameralibs/devices/simulated/registers/RegisterDevice.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cameralibs {

namespace {

using namespace simulated;

/// An opened built-in camera.
class SimulatedDevice : public Device {
public:
    SimulatedDevice(const CameraModel& model, DeviceInfo info, std::shared_ptr<Attachment> attachment);

    [[nodiscard]] const DeviceInfo& info() const override { return m_info; }
    [[nodiscard]] ArvDevice* registers() override { return m_arvDevice.get(); }
    [[nodiscard]] Outcome description(std::string& xml) override;
    [[nodiscard]] Outcome openSource(FrameSink& sink, const ImageMemory& memory,
                                     const std::vector<FrameBuffer*>& buffers,
                                     std::unique_ptr<FrameSource>& source) override;
    void onRemoval(std::function<void(const std::string&)> handler) override { m_removed = std::move(handler); }

private:
    void unplug(unsigned replugAfter);

    DeviceInfo m_info;
    std::shared_ptr<Attachment> m_attachment;
    std::string m_description;
    Acquisition m_acquisition;
    DeviceClock m_clock;
    CameraRegisters m_registers;
    GObjectPointer<ArvDevice> m_arvDevice;
    std::function<void(const std::string&)> m_removed;
};

SimulatedDevice::SimulatedDevice(const CameraModel& model, DeviceInfo info, std::shared_ptr<Attachment> attachment)
    : m_info(std::move(info))
    , m_attachment(std::move(attachment))
    , m_description(describe(model))
    , m_registers(model, m_info.serial, *m_attachment, m_acquisition, m_clock)
    , m_arvDevice(makeRegisterDevice(m_registers, m_description))
{
    m_registers.onUnplug([this](unsigned replugAfter) { unplug(replugAfter); });
}

Outcome SimulatedDevice::description(std::string& xml)
{
    xml = m_description;
    return {};
}

Outcome SimulatedDevice::openSource(FrameSink& sink, const ImageMemory& /*memory*/,
                                    const std::vector<FrameBuffer*>& buffers, std::unique_ptr<FrameSource>& source)
{
    source = std::make_unique<FrameGenerator>(m_acquisition, m_clock, sink, buffers);
    return {};
}

void SimulatedDevice::unplug(unsigned replugAfter)
{
    m_attachment->unplug(replugAfter);
    m_acquisition.disconnect();
    if (m_removed)
        m_removed("The camera was unplugged");
}

/// The parsed value of ORVO_SIMULATED_CAMERAS.
struct CameraList {
    std::size_t builtIn = 0;
    std::vector<DescriptionFile> files;
};

constexpr std::size_t kMaxBuiltIn = 100;

std::optional<std::size_t> number(std::string_view part)
{
    std::size_t value = 0;
    const char* const end = part.data() + part.size();
    const auto [stop, error] = std::from_chars(part.data(), end, value);
    if (error != std::errc() || stop != end || value > kMaxBuiltIn)
        return std::nullopt;
    return value;
}

void readPart(const std::string& part, CameraList& list)
{
    if (const auto count = number(part)) {
        list.builtIn = *count;
    } else if (auto file = readDescriptionFile(part)) {
        list.files.push_back(std::move(*file));
    } else {
        std::fprintf(stderr,
                     "ORVO_SIMULATED_CAMERAS: \"%s\" is neither a number of cameras from 0 to %zu nor a description "
                     "file that can be read\n",
                     part.c_str(), kMaxBuiltIn);
    }
}

CameraList readCameraList(const char* value)
{
    CameraList list;
    list.builtIn = kCameraModels.size();
    if (value == nullptr || *value == '\0')
        return list;
    for (std::string_view rest = value;;) {
        const std::size_t comma = rest.find(',');
        readPart(std::string(rest.substr(0, comma)), list);
        if (comma == std::string_view::npos)
            return list;
        rest.remove_prefix(comma + 1);
    }
}

// Either built-in (`model`) or made from a file (`file`).
struct Camera {
    const CameraModel* model = nullptr;
    const DescriptionFile* file = nullptr;
    DeviceInfo info;
    std::shared_ptr<Attachment> attachment = std::make_shared<Attachment>();
};

class SimulatedProvider : public DeviceProvider {
public:
    explicit SimulatedProvider(CameraList list)
        : m_files(std::move(list.files))
    {
        for (std::size_t i = 0; i < list.builtIn; ++i) {
            const CameraModel& model = kCameraModels[i % kCameraModels.size()];
            add(std::string(model.name), "SIM-" + std::to_string(i + 1)).model = &model;
        }
        for (std::size_t i = 0; i < m_files.size(); ++i)
            add(m_files[i].model, "XML-" + std::to_string(i + 1)).file = &m_files[i];
    }

    [[nodiscard]] std::vector<DeviceInfo> enumerate() override
    {
        std::vector<DeviceInfo> attached;
        for (const Camera& camera : m_cameras) {
            if (camera.attachment->isPlugged())
                attached.push_back(infoOf(camera));
        }
        return attached;
    }

    [[nodiscard]] Outcome open(const std::string& id, std::unique_ptr<Device>& device) override
    {
        const auto camera = std::find_if(m_cameras.begin(), m_cameras.end(),
                                         [&](const Camera& candidate) { return candidate.info.id == id; });
        if (camera == m_cameras.end() || !camera->attachment->isPlugged())
            return {Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING, "The camera is not plugged in"};
        if (camera->file != nullptr) {
            device = std::make_unique<FileCamera>(*camera->file, infoOf(*camera));
        } else {
            device = std::make_unique<SimulatedDevice>(*camera->model, infoOf(*camera), camera->attachment);
        }
        return {};
    }

private:
    Camera& add(std::string model, const std::string& serial)
    {
        Camera camera;
        camera.info = {Orvo::CAM_LINK_SIMULATED, serial, "Simulated", std::move(model), serial, ""};
        m_cameras.push_back(std::move(camera));
        return m_cameras.back();
    }

    static DeviceInfo infoOf(const Camera& camera)
    {
        DeviceInfo info = camera.info;
        info.userName = camera.attachment->memory().userName;
        return info;
    }

    const std::vector<DescriptionFile> m_files;
    std::vector<Camera> m_cameras;
};

} // namespace

std::unique_ptr<DeviceProvider> makeSimulatedProvider(const char* environmentValue)
{
    return std::make_unique<SimulatedProvider>(readCameraList(environmentValue));
}

} // namespace cameralibs

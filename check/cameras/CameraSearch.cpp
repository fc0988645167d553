#include "check/cameras/CameraSearch.h"

#include "camera/StatusName.h"
#include "check/machine/Machine.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace check {

using namespace Orvo;

namespace {

/// A network may make up cameras, each of which takes seconds to fail.
constexpr std::size_t kMaxOpened = 16;

template <std::size_t Size> std::string textOf(const char (&field)[Size])
{
    return {field, ::strnlen(field, Size)};
}

/// Whatever way it is left.
class Library {
public:
    Library()
        : m_status(Sys_Initialize(CAM_LAYER_USB3_VISION | CAM_LAYER_GIGE_VISION))
    {
    }
    ~Library() { (void)Sys_Terminate(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    [[nodiscard]] CAM_API_STATUS status() const { return m_status; }

private:
    CAM_API_STATUS m_status;
};

std::string failureOf(const char* operation, CAM_API_STATUS status)
{
    return std::string(operation) + " fails with " + std::to_string(status) + " " + cameraStatusName(status);
}

std::vector<Camera> listedCameras(std::uint32_t count)
{
    std::vector<Camera> cameras;
    for (std::uint32_t index = 0; index < count; ++index) {
        Camera camera;
        CAM_INFO info{};
        camera.listed = Cam_GetInformation(0, index, &info) == CAM_API_STS_SUCCESS;
        camera.link = static_cast<CAM_LINK>(info.link);
        camera.vendor = textOf(info.vendorName);
        camera.model = textOf(info.modelName);
        camera.serial = textOf(info.serialNumber);
        camera.userName = textOf(info.userDefinedName);
        cameras.push_back(std::move(camera));
    }
    return cameras;
}

bool isOn(CAM_HANDLE camera, const char* feature)
{
    CAM_NODE_HANDLE node = 0;
    std::array<char, 256> value{};
    auto size = static_cast<std::uint32_t>(value.size());
    return Nd_GetNode(camera, feature, &node) == CAM_API_STS_SUCCESS &&
           Nd_GetEnumStrValue(camera, node, value.data(), &size) == CAM_API_STS_SUCCESS &&
           std::strcmp(value.data(), "On") == 0;
}

void open(std::uint32_t index, Camera& camera, const SystemFiles& files, Streaming streaming)
{
    CAM_HANDLE handle = 0;
    const CAM_API_STATUS status = Cam_Open(index, &handle, 0, 1, nullptr, 1);
    camera.opened = status;
    if (status != CAM_API_STS_SUCCESS) {
        const char* text = nullptr;
        const bool hasText = status == CAM_API_STS_XML_LOAD_ERR || status == CAM_API_STS_GENICAM_ERR;
        if (hasText && Misc_GetLastGenICamError(&text) == CAM_API_STS_SUCCESS && text != nullptr)
            camera.whyNot = text;
        return;
    }
    camera.packetSize = packetSizeOf(handle);
    camera.waitsForTrigger = isOn(handle, "TriggerMode");
    if (streaming == Streaming::yes) {
        const auto before = receiveBufferErrors(files);
        camera.stream = tryStream(handle);
        const auto after = receiveBufferErrors(files);
        camera.bufferErrors = before && after && *after > *before ? *after - *before : 0;
    }
    (void)Cam_Close(handle);
}

/// Brings what answers on the network together with what is listed.
void addAnswers(std::vector<Camera>& cameras, std::vector<GigeAnswer> answers)
{
    for (GigeAnswer& answer : answers) {
        const auto listed = std::find_if(cameras.begin(), cameras.end(), [&](const Camera& camera) {
            return camera.link == CAM_LINK_GIGE_VISION && !camera.answer && camera.vendor == answer.vendor &&
                   camera.model == answer.model && camera.serial == answer.serial;
        });
        if (listed != cameras.end()) {
            if (listed->userName.empty())
                listed->userName = answer.userName;
            listed->answer = std::move(answer);
            continue;
        }
        Camera camera;
        camera.vendor = answer.vendor;
        camera.model = answer.model;
        camera.serial = answer.serial;
        camera.userName = answer.userName;
        camera.answer = std::move(answer);
        cameras.push_back(std::move(camera));
    }
}

} // namespace

CameraSearch searchCameras(const std::vector<Interface>& interfaces, const SystemFiles& files, Streaming streaming)
{
    CameraSearch search;
    // Before any camera is opened: some do not answer a search while they are.
    std::vector<GigeAnswer> answers = searchGige(interfaces);

    const Library library;
    if (library.status() != CAM_API_STS_SUCCESS)
        search.failure = failureOf("Sys_Initialize", library.status());
    std::uint32_t count = 0;
    const CAM_API_STATUS status = Sys_GetNumOfCameras(&count);
    if (search.failure.empty() && status != CAM_API_STS_SUCCESS)
        search.failure = failureOf("Sys_GetNumOfCameras", status);
    if (search.failure.empty())
        search.cameras = listedCameras(count);
    const std::size_t listed = search.cameras.size();
    for (std::size_t index = 0; index < std::min(listed, kMaxOpened); ++index)
        open(static_cast<std::uint32_t>(index), search.cameras[index], files, streaming);
    search.notOpened = listed - std::min(listed, kMaxOpened);
    addAnswers(search.cameras, std::move(answers));
    return search;
}

} // namespace check

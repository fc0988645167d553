#include "check/cameras/CameraSearch.h"

#include "camera/StatusName.h"
#include "check/cameras/LibraryLog.h"
#include "check/machine/Machine.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <future>
#include <utility>

namespace check {

using namespace Orvo;

namespace {

/// Opening each of the cameras that an attacker on the network makes up takes seconds.
constexpr std::uint32_t kMaxOpened = 16;

/// A library of another maker may give any count.
constexpr std::uint32_t kMaxListed = 1000;

template <std::size_t Size> std::string textOf(const char (&field)[Size])
{
    return {field, ::strnlen(field, Size)};
}

/// Terminates the library however the search ends.
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
    return std::string(operation) + " fails with " + statusText(status);
}

Camera cameraOf(const CAM_INFO& info)
{
    Camera camera;
    camera.listed = true;
    camera.link = static_cast<CAM_LINK>(info.link);
    camera.vendor = textOf(info.vendorName);
    camera.model = textOf(info.modelName);
    camera.serial = textOf(info.serialNumber);
    camera.userName = textOf(info.userDefinedName);
    return camera;
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

/// Assigns each answer to the listed camera that it comes from; an answer without one adds a camera.
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

std::string statusText(CAM_API_STATUS status)
{
    std::string name = cameraStatusName(status);
    name.erase(name.find_last_not_of(' ') + 1); // two names end in a blank
    return std::to_string(status) + " " + name;
}

CameraSearch searchCameras(const std::vector<Interface>& interfaces, const SystemFiles& files, Streaming streaming)
{
    CameraSearch search;
    // Both searches take a second. They end before a camera is opened, because some cameras do not answer then.
    const LibraryLog log;
    std::future<GigeSearch> asked = std::async(std::launch::async, searchGige, std::cref(interfaces));
    std::uint32_t count = 0;
    const Library library;
    if (library.status() != CAM_API_STS_SUCCESS) {
        search.failures.push_back(failureOf("Sys_Initialize", library.status()));
    } else if (const CAM_API_STATUS status = Sys_GetNumOfCameras(&count); status != CAM_API_STS_SUCCESS) {
        search.failures.push_back(failureOf("Sys_GetNumOfCameras", status));
        count = 0;
    }
    for (const std::string& failure : log.failedSearches())
        search.failures.push_back(failure);
    GigeSearch gige = asked.get();
    search.silent = std::move(gige.silent);
    search.notOpened = count - std::min(count, kMaxOpened);
    for (std::uint32_t index = 0; index < std::min(count, kMaxListed); ++index) {
        CAM_INFO info{};
        if (const CAM_API_STATUS status = Cam_GetInformation(0, index, &info); status != CAM_API_STS_SUCCESS) {
            search.failures.push_back(failureOf("Cam_GetInformation", status));
            continue;
        }
        search.cameras.push_back(cameraOf(info));
        if (index < kMaxOpened)
            open(index, search.cameras.back(), files, streaming);
    }
    addAnswers(search.cameras, std::move(gige.answers));
    return search;
}

} // namespace check

#include "tests/support/ScriptedNodeAccess.h"

#include <array>
#include <string_view>

using namespace scripted;

namespace {

/// Returns one property of the open camera.
template <typename Result, typename Read>
Orvo::CAM_API_STATUS cameraProperty(const char* operation, Orvo::CAM_HANDLE camera, Result* result, Read read)
{
    return world().call(operation, {number(camera), out(result)}, [&](auto&) -> Orvo::CAM_API_STATUS {
        if (const Orvo::CAM_API_STATUS status = world().checkCamera(camera))
            return status;
        if (result == nullptr)
            return Orvo::CAM_API_STS_INVALID_PARAMETER;
        *result = read();
        return Orvo::CAM_API_STS_SUCCESS;
    });
}

struct Follower {
    std::string_view node;
    void (*follow)(ImageFormat& format, std::uint32_t value);
};

constexpr std::array<Follower, 5> kFollowers = {{
    {"Width", [](ImageFormat& format, std::uint32_t value) { format.width = value; }},
    {"Height", [](ImageFormat& format, std::uint32_t value) { format.height = value; }},
    {"PixelFormat", [](ImageFormat& format, std::uint32_t value) { format.pixelFormat = value; }},
    {"TriggerMode", [](ImageFormat& format, std::uint32_t value) { format.triggerFlag = value != 0 ? 1 : 0; }},
    {"TriggerSource", [](ImageFormat& format, std::uint32_t value) { format.triggerSource = value; }},
}};

/// Writes a number to a node if it exists; an enumeration must have an entry with that number.
void leadNode(const char* name, std::int64_t value)
{
    NodeMap& nodes = world().nodes;
    const std::size_t index = nodes.find(name);
    if (index == NodeMap::kNone)
        return;
    NodeMap::Node& node = nodes.at(index);
    if (node.spec.type != Orvo::NODE_TYPE_ENUMERATION || nodes.entryByValue(node, value) != NodeMap::kNone)
        node.spec.intValue = value;
}

} // namespace

namespace scripted {

Trigger trigger()
{
    const std::lock_guard lock(world().mutex);
    return {world().format.triggerFlag != 0, world().format.triggerSource};
}

void setImageFormat(std::uint32_t width, std::uint32_t height, std::uint32_t pixelFormat)
{
    const std::lock_guard lock(world().mutex);
    world().format.width = width;
    world().format.height = height;
    world().format.pixelFormat = pixelFormat;
    leadNode("Width", width);
    leadNode("Height", height);
    leadNode("PixelFormat", pixelFormat);
}

void setTrigger(std::uint8_t flag, std::uint32_t source)
{
    const std::lock_guard lock(world().mutex);
    world().format.triggerFlag = flag;
    world().format.triggerSource = source;
    leadNode("TriggerMode", flag != 0 ? 1 : 0);
    leadNode("TriggerSource", source);
}

void onConvImage(std::function<void(void*, const void*, std::uint32_t, std::uint32_t)> convert)
{
    const std::lock_guard lock(world().mutex);
    world().convert = std::move(convert);
}

void followNode(const NodeMap::Node& node)
{
    for (const Follower& follower : kFollowers) {
        if (follower.node == node.spec.name)
            follower.follow(world().format, static_cast<std::uint32_t>(node.spec.intValue));
    }
}

void changeNode(const std::string& name, const std::function<void(NodeSpec&)>& change)
{
    const std::lock_guard lock(world().mutex);
    world().nodes.change(name, change);
    followNode(world().nodes.at(world().nodes.find(name)));
}

} // namespace scripted

namespace Orvo {

CAM_API_STATUS PrepareLUT()
{
    return world().call("PrepareLUT", {}, [](auto&) { return CAM_API_STS_SUCCESS; });
}

CAM_API_STATUS ConvImage(std::uint32_t dstFormat, std::uint32_t srcPixelFormat, std::uint32_t option, void* dst,
                         const void* src, std::uint32_t width, std::uint32_t height)
{
    return world().call(
        "ConvImage",
        {number(dstFormat), number(srcPixelFormat), number(option), out(dst), in(src), number(width), number(height)},
        [&](auto& lock) -> CAM_API_STATUS {
            if (dst == nullptr || src == nullptr || width == 0 || height == 0)
                return CAM_API_STS_INVALID_PARAMETER;
            const auto convert = world().convert;
            lock.unlock();
            if (convert)
                convert(dst, src, width, height);
            lock.lock();
            return CAM_API_STS_SUCCESS;
        });
}

CAM_API_STATUS GetCamWidth(CAM_HANDLE camera, std::uint32_t* width)
{
    return cameraProperty("GetCamWidth", camera, width, [] { return world().format.width; });
}

CAM_API_STATUS GetCamHeight(CAM_HANDLE camera, std::uint32_t* height)
{
    return cameraProperty("GetCamHeight", camera, height, [] { return world().format.height; });
}

CAM_API_STATUS GetCamPixelFormat(CAM_HANDLE camera, std::uint32_t* pixelFormat)
{
    return cameraProperty("GetCamPixelFormat", camera, pixelFormat, [] { return world().format.pixelFormat; });
}

CAM_API_STATUS GetCamTriggerMode(CAM_HANDLE camera, bool* on)
{
    // A library may write any byte, not only the two that a bool can hold.
    auto* const byte = reinterpret_cast<std::uint8_t*>(on);
    return cameraProperty("GetCamTriggerMode", camera, byte, [] { return world().format.triggerFlag; });
}

CAM_API_STATUS GetCamTriggerSource(CAM_HANDLE camera, std::uint32_t* source)
{
    return cameraProperty("GetCamTriggerSource", camera, source, [] { return world().format.triggerSource; });
}

CAM_API_STATUS ExecuteCamSoftwareTrigger(CAM_HANDLE camera)
{
    return world().call("ExecuteCamSoftwareTrigger", {number(camera)}, [&](auto&) -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = world().checkCamera(camera))
            return status;
        const std::size_t command = world().nodes.find("TriggerSoftware");
        if (command != NodeMap::kNone)
            ++world().nodes.at(command).spec.executed;
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS GetCamIndexFromCamHandle(CAM_HANDLE camera, std::uint32_t* cameraIndex)
{
    return cameraProperty("GetCamIndexFromCamHandle", camera, cameraIndex, [] { return world().camera.cameraIndex; });
}

} // namespace Orvo

// Lists the attached cameras, and every feature of each with its value.
//
//     list-features
//
// Build it with the CMakeLists.txt beside it, or by hand:
//
//     g++ -std=c++17 list-features.cpp $(pkg-config --cflags --libs orvocam) -o list-features

#include <OrvoCamApi.h>

#include <cstdio>
#include <functional>
#include <string>

namespace {

// A text takes two calls: the first returns the size including the terminating NUL, the second the text. If the text
// has grown in between, the second returns CAM_API_STS_BUFFER_TOO_SMALL; then both would have to be repeated.
using TextOperation = std::function<Orvo::CAM_API_STATUS(char* buffer, std::uint32_t* size)>;

Orvo::CAM_API_STATUS readText(const TextOperation& operation, std::string* text)
{
    std::uint32_t size = 0;
    Orvo::CAM_API_STATUS status = operation(nullptr, &size);
    if (status != Orvo::CAM_API_STS_SUCCESS)
        return status;
    text->resize(size);
    status = operation(text->data(), &size);
    if (status == Orvo::CAM_API_STS_SUCCESS)
        text->resize(size - 1); // without the NUL
    return status;
}

const char* nameOf(Orvo::NodeAccessMode mode)
{
    switch (mode) {
    case Orvo::NODE_ACCESS_MODE_NI:
        return "not implemented";
    case Orvo::NODE_ACCESS_MODE_NA:
        return "not available";
    case Orvo::NODE_ACCESS_MODE_WO:
        return "write-only";
    case Orvo::NODE_ACCESS_MODE_RO:
        return "read-only";
    case Orvo::NODE_ACCESS_MODE_RW:
        return "read-write";
    default:
        return "unknown access";
    }
}

// The value as text. Each type of node has its own operation; for nodes of another type it returns
// CAM_API_STS_INVALID_PARAMETER.
Orvo::CAM_API_STATUS readValue(Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node, Orvo::NodeType type,
                               std::string* text)
{
    Orvo::CAM_API_STATUS status = Orvo::CAM_API_STS_SUCCESS;
    switch (type) {
    case Orvo::NODE_TYPE_INTEGER: {
        std::int64_t value = 0;
        status = Orvo::Nd_GetIntValue(camera, node, &value);
        *text = std::to_string(value);
        break;
    }
    case Orvo::NODE_TYPE_FLOAT: {
        double value = 0;
        status = Orvo::Nd_GetFloatValue(camera, node, &value);
        *text = std::to_string(value);
        break;
    }
    case Orvo::NODE_TYPE_BOOLEAN: {
        bool value = false;
        status = Orvo::Nd_GetBoolValue(camera, node, &value);
        *text = value ? "true" : "false";
        break;
    }
    case Orvo::NODE_TYPE_STRING:
        status = readText(
            [=](char* buffer, std::uint32_t* size) { return Orvo::Nd_GetStrValue(camera, node, buffer, size); }, text);
        break;
    case Orvo::NODE_TYPE_ENUMERATION:
        status = readText(
            [=](char* buffer, std::uint32_t* size) { return Orvo::Nd_GetEnumStrValue(camera, node, buffer, size); },
            text);
        break;
    case Orvo::NODE_TYPE_COMMAND:
        *text = "(command)";
        break;
    default:
        *text = "(no value)";
        break;
    }
    return status;
}

void printFeature(Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node, int depth)
{
    std::string name;
    Orvo::NodeType type = Orvo::NODE_TYPE_UNKNOWN;
    Orvo::NodeAccessMode mode = Orvo::NODE_ACCESS_MODE_UNDEFINED;
    Orvo::CAM_API_STATUS status = readText(
        [=](char* buffer, std::uint32_t* size) { return Orvo::Nd_GetName(camera, node, buffer, size); }, &name);
    if (status == Orvo::CAM_API_STS_SUCCESS)
        status = Orvo::Nd_GetType(camera, node, &type);
    if (status == Orvo::CAM_API_STS_SUCCESS)
        status = Orvo::Nd_GetAccessMode(camera, node, &mode);
    if (status != Orvo::CAM_API_STS_SUCCESS) {
        std::printf("%*s%s: status %u\n", 2 * depth, "", name.c_str(), status);
        return;
    }

    // Categories hold the features; the outermost is always called "Root".
    if (type == Orvo::NODE_TYPE_CATEGORY) {
        std::printf("%*s[%s]\n", 2 * depth, "", name.c_str());
        std::uint32_t count = 0;
        if (Orvo::Nd_GetNumOfFeatures(camera, node, &count) != Orvo::CAM_API_STS_SUCCESS)
            return;
        for (std::uint32_t i = 0; i < count; ++i) {
            Orvo::CAM_NODE_HANDLE child = 0;
            if (Orvo::Nd_GetFeatureByIndex(camera, node, i, &child) == Orvo::CAM_API_STS_SUCCESS)
                printFeature(camera, child, depth + 1);
        }
        return;
    }

    std::string value = nameOf(mode);
    if (mode == Orvo::NODE_ACCESS_MODE_RO || mode == Orvo::NODE_ACCESS_MODE_RW) {
        status = readValue(camera, node, type, &value);
        if (status != Orvo::CAM_API_STS_SUCCESS)
            value = "status " + std::to_string(status);
    }
    std::printf("%*s%s = %s\n", 2 * depth, "", name.c_str(), value.c_str());
}

Orvo::CAM_API_STATUS printCamera(std::uint32_t index)
{
    // By index, before the camera is opened; camera handle 0.
    Orvo::CAM_INFO info{};
    Orvo::CAM_API_STATUS status = Orvo::Cam_GetInformation(0, index, &info);
    if (status != Orvo::CAM_API_STS_SUCCESS)
        return status;
    std::printf("Camera %u: %s %s, serial number %s\n", index, info.vendorName, info.modelName, info.serialNumber);

    // No removal signal is needed for a short visit.
    Orvo::CAM_HANDLE camera = 0;
    status = Orvo::Cam_Open(index, &camera, 0, 1, nullptr, 1);
    if (status != Orvo::CAM_API_STS_SUCCESS)
        return status;
    Orvo::CAM_NODE_HANDLE root = 0;
    status = Orvo::Nd_GetNode(camera, "Root", &root);
    if (status == Orvo::CAM_API_STS_SUCCESS)
        printFeature(camera, root, 1);
    const Orvo::CAM_API_STATUS closed = Orvo::Cam_Close(camera);
    return status != Orvo::CAM_API_STS_SUCCESS ? status : closed;
}

} // namespace

int main()
{
    Orvo::CAM_API_STATUS status = Orvo::Sys_Initialize(65535);
    if (status != Orvo::CAM_API_STS_SUCCESS) {
        std::fprintf(stderr, "Sys_Initialize: status %u\n", status);
        return 1;
    }
    // Looks for cameras; their indices hold until the next call.
    std::uint32_t count = 0;
    status = Orvo::Sys_GetNumOfCameras(&count);
    if (status == Orvo::CAM_API_STS_SUCCESS)
        std::printf("%u cameras\n", count);

    bool failed = status != Orvo::CAM_API_STS_SUCCESS;
    for (std::uint32_t i = 0; i < count; ++i) {
        status = printCamera(i);
        if (status != Orvo::CAM_API_STS_SUCCESS) {
            // Such as 2052: another program controls the camera.
            std::fprintf(stderr, "Camera %u: status %u\n", i, status);
            failed = true;
        }
    }
    // Whatever is still open is closed.
    const bool terminated = Orvo::Sys_Terminate() == Orvo::CAM_API_STS_SUCCESS;
    return failed || !terminated ? 1 : 0;
}

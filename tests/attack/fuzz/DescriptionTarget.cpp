// A description: the validator, and every feature of a camera that is made of it, read and written.

#include "camera/OrvoCamApi.h"
#include "tests/attack/fuzz/FuzzInput.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

using namespace Orvo;

namespace {

constexpr std::size_t kMaxNodes = 100;

/// What the interface allows an operation on an opened camera to answer.
CAM_API_STATUS known(CAM_API_STATUS status)
{
    static const std::set<CAM_API_STATUS> statuses = {
        CAM_API_STS_SUCCESS,          CAM_API_STS_NOT_FOUND,     CAM_API_STS_INVALID_PARAMETER,
        CAM_API_STS_BUFFER_TOO_SMALL, CAM_API_STS_GENICAM_ERR,   CAM_API_STS_NOT_READABLE,
        CAM_API_STS_NOT_WRITABLE,     CAM_API_STS_NOT_AVAILABLE, CAM_API_STS_INVALID_ADDRESS};
    if (statuses.count(status) == 0)
        std::fprintf(stderr, "status %u\n", status);
    REQUIRE(statuses.count(status) == 1);
    return status;
}

using TextOperation = CAM_API_STATUS (*)(CAM_HANDLE, CAM_NODE_HANDLE, char*, std::uint32_t*);

std::string textOf(TextOperation operation, CAM_HANDLE camera, CAM_NODE_HANDLE node)
{
    std::uint32_t size = 0;
    if (known(operation(camera, node, nullptr, &size)) != CAM_API_STS_SUCCESS)
        return {};
    REQUIRE(size >= 1);
    std::vector<char> text(size, 'x');
    if (known(operation(camera, node, text.data(), &size)) != CAM_API_STS_SUCCESS)
        return {};
    REQUIRE(size <= text.size() && text[size - 1] == '\0');
    return text.data();
}

template <class Value>
bool get(CAM_API_STATUS (*operation)(CAM_HANDLE, CAM_NODE_HANDLE, Value*), CAM_HANDLE camera, CAM_NODE_HANDLE node,
         Value& value)
{
    return known(operation(camera, node, &value)) == CAM_API_STS_SUCCESS;
}

/// Every operation on one node: those for other types have to refuse.
void tryNode(CAM_HANDLE camera, CAM_NODE_HANDLE node)
{
    NodeAccessMode access{};
    TC_NODE_VISIBILITY visibility{};
    NodeRepresentation representation{};
    FloatDisplayNotation notation{};
    std::int64_t precision = 0;
    (void)get(Nd_GetAccessMode, camera, node, access);
    (void)get(Nd_GetVisibility, camera, node, visibility);
    (void)get(Nd_GetRepresentation, camera, node, representation);
    (void)get(Nd_GetFloatDisplayNotation, camera, node, notation);
    (void)get(Nd_GetFloatDisplayPrecision, camera, node, precision);
    for (const TextOperation operation : {Nd_GetName, Nd_GetDescription, Nd_GetToolTip, Nd_GetUnit})
        (void)textOf(operation, camera, node);

    std::int64_t lowest = 0;
    std::int64_t highest = 0;
    std::int64_t step = 0;
    std::int64_t value = 0;
    (void)get(Nd_GetIntMin, camera, node, lowest);
    (void)get(Nd_GetIntMax, camera, node, highest);
    (void)get(Nd_GetIntInc, camera, node, step);
    (void)get(Nd_GetIntValue, camera, node, value);
    for (const std::int64_t written :
         {value, lowest, highest, std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::max()})
        (void)known(Nd_SetIntValue(camera, node, written, written != -1));

    double low = 0;
    double high = 0;
    double inc = 0;
    double number = 0;
    bool has = false;
    (void)get(Nd_GetFloatMin, camera, node, low);
    (void)get(Nd_GetFloatMax, camera, node, high);
    if (get(Nd_GetFloatHasInc, camera, node, has) && has)
        (void)get(Nd_GetFloatInc, camera, node, inc);
    (void)get(Nd_GetFloatValue, camera, node, number);
    for (const double written : {number, low, high, 1e300, std::nan("")})
        (void)known(Nd_SetFloatValue(camera, node, written, written != 1e300));

    bool flag = false;
    (void)get(Nd_GetBoolValue, camera, node, flag);
    (void)known(Nd_SetBoolValue(camera, node, !flag, true));
    (void)textOf(Nd_GetStrValue, camera, node);
    (void)known(Nd_SetStrValue(camera, node, "text", true));
    (void)known(Nd_CmdExecute(camera, node, true));

    (void)textOf(Nd_GetEnumStrValue, camera, node);
    (void)get(Nd_GetEnumIntValue, camera, node, value);
    std::uint32_t entries = 0;
    (void)get(Nd_GetNumOfEnumEntries, camera, node, entries);
    for (std::uint32_t i = 0; i < std::min(entries, 5U); ++i) {
        CAM_NODE_HANDLE entry = 0;
        REQUIRE(Nd_GetEnumEntryByIndex(camera, node, i, &entry) == CAM_API_STS_SUCCESS);
        (void)get(Nd_GetAccessMode, camera, entry, access);
        (void)known(Nd_SetEnumStrValue(camera, node, textOf(Nd_GetEnumEntryStrValue, camera, entry).c_str(), true));
    }
    (void)known(Nd_SetEnumIntValue(camera, node, 1, true));
}

/// The nodes that the Root leads to, and those that no category has.
std::set<CAM_NODE_HANDLE> nodesOf(CAM_HANDLE camera, std::string_view xml)
{
    std::set<CAM_NODE_HANDLE> nodes;
    std::vector<CAM_NODE_HANDLE> left;
    for (std::size_t at = 0; (at = xml.find("Name=\"", at)) != std::string_view::npos && nodes.size() < kMaxNodes;) {
        at += 6;
        const std::string name(xml.substr(at, xml.substr(at).find('"')));
        CAM_NODE_HANDLE node = 0;
        if (Nd_GetNode(camera, name.c_str(), &node) == CAM_API_STS_SUCCESS && nodes.insert(node).second)
            left.push_back(node);
    }
    while (!left.empty() && nodes.size() < kMaxNodes) {
        const CAM_NODE_HANDLE category = left.back();
        left.pop_back();
        std::uint32_t count = 0;
        if (!get(Nd_GetNumOfFeatures, camera, category, count))
            continue;
        for (std::uint32_t i = 0; i < count; ++i) {
            CAM_NODE_HANDLE feature = 0;
            REQUIRE(Nd_GetFeatureByIndex(camera, category, i, &feature) == CAM_API_STS_SUCCESS);
            if (nodes.insert(feature).second)
                left.push_back(feature);
        }
    }
    return nodes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view xml(reinterpret_cast<const char*>(data), size);
    const int file = ::memfd_create("description", MFD_CLOEXEC);
    REQUIRE(file >= 0 && ::write(file, data, size) == static_cast<ssize_t>(size));
    const std::string path = "0,/proc/self/fd/" + std::to_string(file);
    ::setenv("ORVO_SIMULATED_CAMERAS", path.c_str(), 1); // NOLINT(concurrency-mt-unsafe): the only thread
    REQUIRE(Sys_Initialize(CAM_LAYER_SIMULATED) == CAM_API_STS_SUCCESS);
    std::uint32_t count = 0;
    REQUIRE(Sys_GetNumOfCameras(&count) == CAM_API_STS_SUCCESS && count == 1);
    CAM_HANDLE camera = 0;
    const CAM_API_STATUS status = Cam_Open(0, &camera, 0, 1, nullptr, 1);
    REQUIRE(status == CAM_API_STS_SUCCESS || status == CAM_API_STS_XML_LOAD_ERR || status == CAM_API_STS_GENICAM_ERR);
    if (status == CAM_API_STS_SUCCESS) {
        for (const CAM_NODE_HANDLE node : nodesOf(camera, xml))
            tryNode(camera, node);
    } else {
        const char* text = nullptr;
        REQUIRE(Misc_GetLastGenICamError(&text) == CAM_API_STS_SUCCESS && text != nullptr);
        REQUIRE(std::strlen(text) > 0 && std::strlen(text) <= 1000);
    }
    REQUIRE(Sys_Terminate() == CAM_API_STS_SUCCESS);
    ::close(file);
    return 0;
}

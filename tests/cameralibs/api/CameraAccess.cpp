#include "tests/cameralibs/api/CameraAccess.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Orvo;

namespace {

CAM_API_STATUS readText(TextOperation operation, CAM_HANDLE camera, CAM_NODE_HANDLE node, std::string& text)
{
    std::uint32_t size = 0;
    if (const CAM_API_STATUS status = operation(camera, node, nullptr, &size); status != CAM_API_STS_SUCCESS)
        return status;
    text.assign(size, '?');
    if (const CAM_API_STATUS status = operation(camera, node, text.data(), &size); status != CAM_API_STS_SUCCESS)
        return status;
    EXPECT_EQ(size, text.size());
    EXPECT_EQ(text.back(), '\0');
    text.pop_back();
    return CAM_API_STS_SUCCESS;
}

} // namespace

bool becomes(const std::function<bool()>& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::yield();
    }
    return true;
}

CAM_NODE_HANDLE nodeOf(CAM_HANDLE camera, const std::string& name)
{
    CAM_NODE_HANDLE handle = 0;
    EXPECT_EQ(Nd_GetNode(camera, name.c_str(), &handle), CAM_API_STS_SUCCESS) << name;
    return handle;
}

std::string textOf(TextOperation operation, CAM_HANDLE camera, CAM_NODE_HANDLE node)
{
    std::string text;
    const CAM_API_STATUS status = readText(operation, camera, node, text);
    return status == CAM_API_STS_SUCCESS ? text : "status " + std::to_string(status);
}

std::string wholeText(TextOperation operation, CAM_HANDLE camera, CAM_NODE_HANDLE node)
{
    std::string text;
    EXPECT_EQ(readText(operation, camera, node, text), CAM_API_STS_SUCCESS);
    return text;
}

std::vector<std::string> featuresOf(CAM_HANDLE camera, const std::string& category)
{
    const CAM_NODE_HANDLE node = nodeOf(camera, category);
    std::uint32_t count = 0;
    EXPECT_EQ(Nd_GetNumOfFeatures(camera, node, &count), CAM_API_STS_SUCCESS);
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_NODE_HANDLE child = 0;
        EXPECT_EQ(Nd_GetFeatureByIndex(camera, node, i, &child), CAM_API_STS_SUCCESS);
        names.push_back(wholeText(Nd_GetName, camera, child));
    }
    return names;
}

std::vector<std::string> entriesOf(CAM_HANDLE camera, const std::string& enumeration)
{
    const CAM_NODE_HANDLE node = nodeOf(camera, enumeration);
    std::uint32_t count = 0;
    EXPECT_EQ(Nd_GetNumOfEnumEntries(camera, node, &count), CAM_API_STS_SUCCESS);
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_NODE_HANDLE entry = 0;
        EXPECT_EQ(Nd_GetEnumEntryByIndex(camera, node, i, &entry), CAM_API_STS_SUCCESS);
        names.push_back(wholeText(Nd_GetEnumEntryStrValue, camera, entry));
    }
    return names;
}

std::int64_t intOf(CAM_HANDLE camera, const std::string& name)
{
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(camera, nodeOf(camera, name), &value), CAM_API_STS_SUCCESS) << name;
    return value;
}

void setInt(CAM_HANDLE camera, const std::string& name, std::int64_t value)
{
    EXPECT_EQ(Nd_SetIntValue(camera, nodeOf(camera, name), value), CAM_API_STS_SUCCESS) << name;
}

void setEntry(CAM_HANDLE camera, const std::string& name, const std::string& symbolic)
{
    EXPECT_EQ(Nd_SetEnumStrValue(camera, nodeOf(camera, name), symbolic.c_str()), CAM_API_STS_SUCCESS) << name;
}

void execute(CAM_HANDLE camera, const std::string& name)
{
    EXPECT_EQ(Nd_CmdExecute(camera, nodeOf(camera, name)), CAM_API_STS_SUCCESS) << name;
}

#include "CameraAccess.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Orvo;

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

CAM_NODE_HANDLE nodeOf(CAM_HANDLE camera, const char* name)
{
    CAM_NODE_HANDLE handle = 0;
    EXPECT_EQ(Nd_GetNode(camera, name, &handle), CAM_API_STS_SUCCESS) << name;
    return handle;
}

std::string textOf(TextOperation operation, CAM_HANDLE camera, CAM_NODE_HANDLE node)
{
    std::uint32_t size = 0;
    CAM_API_STATUS status = operation(camera, node, nullptr, &size);
    std::string text(size, '?');
    if (status == CAM_API_STS_SUCCESS)
        status = operation(camera, node, text.data(), &size);
    if (status != CAM_API_STS_SUCCESS)
        return "status " + std::to_string(status);
    EXPECT_EQ(size, text.size());
    EXPECT_EQ(text.back(), '\0');
    text.pop_back();
    return text;
}

std::vector<std::string> featuresOf(CAM_HANDLE camera, const char* category)
{
    const CAM_NODE_HANDLE node = nodeOf(camera, category);
    std::uint32_t count = 0;
    EXPECT_EQ(Nd_GetNumOfFeatures(camera, node, &count), CAM_API_STS_SUCCESS);
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_NODE_HANDLE child = 0;
        EXPECT_EQ(Nd_GetFeatureByIndex(camera, node, i, &child), CAM_API_STS_SUCCESS);
        names.push_back(textOf(Nd_GetName, camera, child));
    }
    return names;
}

std::vector<std::string> entriesOf(CAM_HANDLE camera, const char* enumeration)
{
    const CAM_NODE_HANDLE node = nodeOf(camera, enumeration);
    std::uint32_t count = 0;
    EXPECT_EQ(Nd_GetNumOfEnumEntries(camera, node, &count), CAM_API_STS_SUCCESS);
    std::vector<std::string> names;
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_NODE_HANDLE entry = 0;
        EXPECT_EQ(Nd_GetEnumEntryByIndex(camera, node, i, &entry), CAM_API_STS_SUCCESS);
        names.push_back(textOf(Nd_GetEnumEntryStrValue, camera, entry));
    }
    return names;
}

std::int64_t intOf(CAM_HANDLE camera, const char* name)
{
    std::int64_t value = 0;
    EXPECT_EQ(Nd_GetIntValue(camera, nodeOf(camera, name), &value), CAM_API_STS_SUCCESS) << name;
    return value;
}

void setInt(CAM_HANDLE camera, const char* name, std::int64_t value)
{
    EXPECT_EQ(Nd_SetIntValue(camera, nodeOf(camera, name), value), CAM_API_STS_SUCCESS) << name;
}

void setEntry(CAM_HANDLE camera, const char* name, const char* symbolic)
{
    EXPECT_EQ(Nd_SetEnumStrValue(camera, nodeOf(camera, name), symbolic), CAM_API_STS_SUCCESS) << name;
}

void execute(CAM_HANDLE camera, const char* name)
{
    EXPECT_EQ(Nd_CmdExecute(camera, nodeOf(camera, name)), CAM_API_STS_SUCCESS) << name;
}

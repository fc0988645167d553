#include "benchmarks/feature_table/InstantCamera.h"

#include "camera/OrvoCamApi.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

using namespace Orvo;

constexpr CAM_NODE_HANDLE kRoot = 1;
constexpr CAM_NODE_HANDLE kFirstRow = 2; // the handle of row 0; the others follow in order

int rowCount = 0;
int generation = 0;

int rowOf(CAM_NODE_HANDLE node)
{
    return static_cast<int>(node - kFirstRow);
}

bool isCategory(CAM_NODE_HANDLE node)
{
    return node == kRoot || rowOf(node) % instant::kRowsPerCategory == 0;
}

template <typename Result, typename Value> CAM_API_STATUS give(Result* result, Value value)
{
    *result = static_cast<Result>(value);
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS giveText(const char* text, char* buffer, std::uint32_t* size)
{
    *size = static_cast<std::uint32_t>(std::strlen(text)) + 1;
    if (buffer != nullptr)
        std::memcpy(buffer, text, *size);
    return CAM_API_STS_SUCCESS;
}

} // namespace

void instant::setRows(int rows)
{
    rowCount = rows;
    generation = 0;
}

void instant::changeEverything()
{
    ++generation;
}

namespace Orvo {

CAM_API_STATUS Nd_GetNode(CAM_HANDLE, const char*, CAM_NODE_HANDLE* node)
{
    return give(node, kRoot);
}

CAM_API_STATUS Nd_GetNumOfFeatures(CAM_HANDLE, CAM_NODE_HANDLE category, std::uint32_t* count)
{
    if (category == kRoot)
        return give(count, (rowCount + instant::kRowsPerCategory - 1) / instant::kRowsPerCategory);
    return give(count, std::min(instant::kRowsPerCategory, rowCount - rowOf(category)) - 1);
}

CAM_API_STATUS Nd_GetFeatureByIndex(CAM_HANDLE, CAM_NODE_HANDLE category, std::uint32_t index, CAM_NODE_HANDLE* child)
{
    if (category == kRoot)
        return give(child, kFirstRow + CAM_NODE_HANDLE{index} * static_cast<unsigned>(instant::kRowsPerCategory));
    return give(child, category + 1 + index);
}

CAM_API_STATUS Nd_GetName(CAM_HANDLE, CAM_NODE_HANDLE node, char* buffer, std::uint32_t* size)
{
    char name[32];
    std::snprintf(name, sizeof name, isCategory(node) ? "Category%d" : "FeatureOfTheCamera%d", rowOf(node));
    return giveText(name, buffer, size);
}

CAM_API_STATUS Nd_GetType(CAM_HANDLE, CAM_NODE_HANDLE node, NodeType* type)
{
    return give(type, isCategory(node) ? NODE_TYPE_CATEGORY : NODE_TYPE_INTEGER);
}

CAM_API_STATUS Nd_GetAccessMode(CAM_HANDLE, CAM_NODE_HANDLE node, NodeAccessMode* mode)
{
    const bool readOnly = isCategory(node) || generation % 2 == 1;
    return give(mode, readOnly ? NODE_ACCESS_MODE_RO : NODE_ACCESS_MODE_RW);
}

CAM_API_STATUS Nd_GetVisibility(CAM_HANDLE, CAM_NODE_HANDLE node, TC_NODE_VISIBILITY* visibility)
{
    return give(visibility, rowOf(node) % 3);
}

CAM_API_STATUS Nd_GetDescription(CAM_HANDLE, CAM_NODE_HANDLE, char* buffer, std::uint32_t* size)
{
    return giveText("What the feature does.", buffer, size);
}

CAM_API_STATUS Nd_GetToolTip(CAM_HANDLE, CAM_NODE_HANDLE, char* buffer, std::uint32_t* size)
{
    return giveText("A feature.", buffer, size);
}

CAM_API_STATUS Nd_GetUnit(CAM_HANDLE, CAM_NODE_HANDLE, char* buffer, std::uint32_t* size)
{
    return giveText("", buffer, size);
}

CAM_API_STATUS Nd_GetRepresentation(CAM_HANDLE, CAM_NODE_HANDLE, NodeRepresentation* representation)
{
    return give(representation, NODE_REPRESENTATION_PURE_NUMBER);
}

CAM_API_STATUS Nd_GetIntValue(CAM_HANDLE, CAM_NODE_HANDLE node, std::int64_t* value)
{
    return give(value, rowOf(node) + 1000 * generation);
}

CAM_API_STATUS Nd_GetIntMax(CAM_HANDLE, CAM_NODE_HANDLE, std::int64_t* value)
{
    return give(value, 1000000000);
}

CAM_API_STATUS Nd_GetIntMin(CAM_HANDLE, CAM_NODE_HANDLE, std::int64_t* value)
{
    return give(value, 0);
}

CAM_API_STATUS Nd_GetIntInc(CAM_HANDLE, CAM_NODE_HANDLE, std::int64_t* value)
{
    return give(value, 1);
}

} // namespace Orvo

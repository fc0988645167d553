#include "features/item/NodeText.h"

#include <climits>
#include <cstddef>
#include <memory>
#include <new>

Orvo::CAM_API_STATUS readTextSize(NodeTextOperation operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node,
                                  std::uint32_t& size)
{
    size = 0;
    return operation(camera, node, nullptr, &size);
}

Orvo::CAM_API_STATUS readTextOfSize(NodeTextOperation operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node,
                                    std::uint32_t size, QString& text)
{
    if (size >= INT_MAX) // more than a QString holds
        return Orvo::CAM_API_STS_UNSUCCESSFUL;
    // Zeroed and one byte longer than announced, so that the text is terminated whatever the library writes.
    const std::unique_ptr<char[]> buffer(new (std::nothrow) char[std::size_t{size} + 1]());
    if (!buffer)
        return Orvo::CAM_API_STS_UNSUCCESSFUL;
    const Orvo::CAM_API_STATUS status = operation(camera, node, buffer.get(), &size);
    if (status == Orvo::CAM_API_STS_SUCCESS)
        text = QString::fromUtf8(buffer.get());
    return status;
}

Orvo::CAM_API_STATUS readText(NodeTextOperation operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node,
                              QString& text)
{
    std::uint32_t size = 0;
    const Orvo::CAM_API_STATUS status = readTextSize(operation, camera, node, size);
    return status == Orvo::CAM_API_STS_SUCCESS ? readTextOfSize(operation, camera, node, size, text) : status;
}

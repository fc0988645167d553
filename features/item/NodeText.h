#pragma once

#include "camera/OrvoCamApi.h"

#include <QString>

#include <cstdint>

/// An operation of the camera API that reads a text of a node.
using NodeTextOperation = Orvo::CAM_API_STATUS (*)(Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node, char* buffer,
                                                   std::uint32_t* size);

/// The first of the two calls that read a text: gets the number of bytes.
[[nodiscard]] Orvo::CAM_API_STATUS readTextSize(NodeTextOperation operation, Orvo::CAM_HANDLE camera,
                                                Orvo::CAM_NODE_HANDLE node, std::uint32_t& size);

/// The second call: gets the text, of at most `size` bytes. A failure leaves `text` unchanged. If there is no memory
/// for `size` bytes, the result is CAM_API_STS_UNSUCCESSFUL without a call.
[[nodiscard]] Orvo::CAM_API_STATUS readTextOfSize(NodeTextOperation operation, Orvo::CAM_HANDLE camera,
                                                  Orvo::CAM_NODE_HANDLE node, std::uint32_t size, QString& text);

/// Makes both calls.
[[nodiscard]] Orvo::CAM_API_STATUS readText(NodeTextOperation operation, Orvo::CAM_HANDLE camera,
                                            Orvo::CAM_NODE_HANDLE node, QString& text);

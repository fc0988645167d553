#pragma once

#include "camera/OrvoCamApi.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Longer than any operation takes on the slowest machine.
constexpr std::chrono::seconds kPatience(60);

/// Polls the condition. False if it does not become true within that time.
[[nodiscard]] bool becomes(const std::function<bool()>& condition);

// Shortcuts for exported functions. A failing call fails the test.

[[nodiscard]] Orvo::CAM_NODE_HANDLE nodeOf(Orvo::CAM_HANDLE camera, const std::string& name);

using TextOperation = Orvo::CAM_API_STATUS (*)(Orvo::CAM_HANDLE, Orvo::CAM_NODE_HANDLE, char*, std::uint32_t*);

/// The whole text, or "status N".
[[nodiscard]] std::string textOf(TextOperation operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node);

/// The whole text. Fails the test if there is none.
[[nodiscard]] std::string wholeText(TextOperation operation, Orvo::CAM_HANDLE camera, Orvo::CAM_NODE_HANDLE node);

/// The names of a category's features, in their order.
[[nodiscard]] std::vector<std::string> featuresOf(Orvo::CAM_HANDLE camera, const std::string& category);

/// The symbolic names of an enumeration's entries, in their order.
[[nodiscard]] std::vector<std::string> entriesOf(Orvo::CAM_HANDLE camera, const std::string& enumeration);

[[nodiscard]] std::int64_t intOf(Orvo::CAM_HANDLE camera, const std::string& name);
void setInt(Orvo::CAM_HANDLE camera, const std::string& name, std::int64_t value);
void setEntry(Orvo::CAM_HANDLE camera, const std::string& name, const std::string& symbolic);
void execute(Orvo::CAM_HANDLE camera, const std::string& name);

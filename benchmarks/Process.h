#pragma once

#include <cstddef>

/// What the operating system says of this process.
namespace process {

/// Seconds of processor time, user and system, of all threads.
[[nodiscard]] double processorSeconds();

/// Seconds of processor time of the calling thread.
[[nodiscard]] double threadSeconds();

/// Resident memory in MiB.
[[nodiscard]] double residentMiB();

[[nodiscard]] std::size_t threads();

} // namespace process

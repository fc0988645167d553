#pragma once

#include <vector>

#include <sys/types.h>

/// The transports that this process has started and that have not ended. One that nobody has waited for counts.
[[nodiscard]] std::vector<pid_t> transports();

/// How many descriptors and threads this process has.
[[nodiscard]] std::size_t ownDescriptors();
[[nodiscard]] std::size_t ownThreads();

/// The resident memory of this process, in bytes.
[[nodiscard]] std::size_t ownMemory();

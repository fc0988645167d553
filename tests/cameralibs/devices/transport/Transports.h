#pragma once

#include <vector>

#include <sys/types.h>

/// The transport processes that are children of this process, including zombies.
[[nodiscard]] std::vector<pid_t> transports();

/// The number of descriptors and threads of this process.
[[nodiscard]] std::size_t ownDescriptors();
[[nodiscard]] std::size_t ownThreads();

/// The resident memory of this process, in bytes.
[[nodiscard]] std::size_t ownMemory();

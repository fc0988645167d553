#pragma once

#include <cstdint>

namespace cameralibs::transport {

/// Takes from the process, for good, what it does not need to reach cameras: new privileges, memory without a limit,
/// the file system, other processes, and system calls that serve none of this. What the kernel lacks is left out and
/// noted. Comes before anything is received.
void restrictProcess();

/// Makes room in the address space for image buffers of this size, in place of any earlier ones.
void allowBuffers(std::uint64_t bytes);

} // namespace cameralibs::transport

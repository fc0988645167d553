#pragma once

#include <cstdint>

namespace cameralibs::transport {

/// Permanently drops what the process does not need for reaching cameras: new privileges, unlimited memory, the file
/// system, other processes and unused system calls. Restrictions that the kernel does not support are skipped and
/// logged. To be called before anything is received.
void restrictProcess();

/// Raises the limit of the address space by the size of the image buffers, which replace any earlier ones.
void allowBuffers(std::uint64_t bytes);

} // namespace cameralibs::transport

#pragma once

/// How long a test waits for an event at most. Busy machines may be slow, above all with a sanitizer, where a single
/// large image can take 15 seconds.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kPatienceMs = 240000;
#else
constexpr int kPatienceMs = 60000;
#endif

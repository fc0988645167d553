#pragma once

/// How long a test waits at most for what comes by itself. A busy machine may be late, by much under a sanitizer: there
/// a large image takes a quarter of a minute.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kPatienceMs = 240000;
#else
constexpr int kPatienceMs = 60000;
#endif

#pragma once

/// How long a test waits at most for what comes by itself: a busy machine may be late, by much under a sanitizer.
constexpr int kPatienceMs = 60000;

#pragma once

#include "tests/cameralibs/devices/SimulatedCamera.h"

#include <gtest/gtest.h>

#include <cstdint>

/// Tests of the built-in cameras. Opening a camera is slow in instrumented builds, so each one is opened once per suite
/// and reset before every test.
class BuiltInTest : public ::testing::Test {
public:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

protected:
    [[nodiscard]] static const SimulatedCamera& switchedOn(std::uint32_t index);
};

/// Tests of the monochrome camera.
class MonoTest : public BuiltInTest {
protected:
    const SimulatedCamera& m_camera = switchedOn(kMono);
};

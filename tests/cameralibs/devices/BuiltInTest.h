#pragma once

#include "tests/cameralibs/devices/SimulatedCamera.h"

#include <gtest/gtest.h>

#include <cstdint>

/// Tests of the built-in cameras. Opening one takes long where the tests are slowed down, so each is opened once for
/// all tests of a suite, and switched off and on before every one.
class BuiltInTest : public ::testing::Test {
public:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

protected:
    [[nodiscard]] static const SimulatedCamera& switchedOn(std::uint32_t index);
};

/// Those of the monochrome one.
class MonoTest : public BuiltInTest {
protected:
    const SimulatedCamera& m_camera = switchedOn(kMono);
};

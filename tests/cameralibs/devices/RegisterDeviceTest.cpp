// The registers of simulated cameras as Aravis accesses them.

#include "cameralibs/devices/simulated/registers/RegisterDevice.h"

#include "cameralibs/base/ErrorStatus.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <new>

using namespace cameralibs;
using namespace cameralibs::simulated;

namespace {

/// Returns the given result, or throws if there is none.
class ScriptedRegisters : public RegisterSpace {
public:
    [[nodiscard]] AccessResult read(std::uint64_t, void*, std::uint32_t) override { return answer(); }
    [[nodiscard]] AccessResult write(std::uint64_t, const void*, std::uint32_t) override { return answer(); }

    const AccessResult* result = nullptr;

private:
    [[nodiscard]] AccessResult answer() const
    {
        if (result == nullptr)
            throw std::bad_alloc();
        return *result;
    }
};

class RegisterDeviceTest : public ::testing::Test {
protected:
    /// Expects this status from every kind of register access.
    void expectStatus(Orvo::CAM_API_STATUS expected) const
    {
        ArvDevice* const device = m_device.get();
        std::uint32_t value = 0;
        GErrorPointer error;
        EXPECT_EQ(arv_device_read_memory(device, 0, sizeof value, &value, error.out()) != FALSE, expected == 0);
        EXPECT_EQ(outcomeOf(error, Attempted::reading).status, expected);
        EXPECT_EQ(arv_device_write_memory(device, 0, sizeof value, &value, error.out()) != FALSE, expected == 0);
        EXPECT_EQ(outcomeOf(error, Attempted::writing).status, expected);
        EXPECT_EQ(arv_device_read_register(device, 0, &value, error.out()) != FALSE, expected == 0);
        EXPECT_EQ(outcomeOf(error, Attempted::reading).status, expected);
        EXPECT_EQ(arv_device_write_register(device, 0, value, error.out()) != FALSE, expected == 0);
        EXPECT_EQ(outcomeOf(error, Attempted::writing).status, expected);
    }

    ScriptedRegisters m_registers;
    const GObjectPointer<ArvDevice> m_device = makeRegisterDevice(m_registers, "");
};

} // namespace

TEST_F(RegisterDeviceTest, EveryResultHasItsStatus)
{
    const struct {
        AccessResult result;
        Orvo::CAM_API_STATUS status;
    } rows[] = {
        {AccessResult::Done, Orvo::CAM_API_STS_SUCCESS},
        {AccessResult::NotConnected, Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING},
        {AccessResult::InvalidAddress, Orvo::CAM_API_STS_INVALID_ADDRESS},
        {AccessResult::WriteProtected, Orvo::CAM_API_STS_WRITE_PROTECT},
        {AccessResult::Refused, Orvo::CAM_API_STS_ACCESS_DENIED},
        {AccessResult::InvalidValue, Orvo::CAM_API_STS_INVALID_PARAMETER},
        {AccessResult::Failed, Orvo::CAM_API_STS_UNSUCCESSFUL},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.status);
        m_registers.result = &row.result;
        expectStatus(row.status);
    }
}

TEST_F(RegisterDeviceTest, ExceptionsDoNotPropagateThroughAravis)
{
    expectStatus(Orvo::CAM_API_STS_UNSUCCESSFUL);
}

#include "cameralibs/devices/aravis/UsbReads.h"

#include "FakeUsb.h"

#include "cameralibs/devices/aravis/GObjectPointer.h"

#include <arv.h>

#include <gtest/gtest.h>

using namespace orvo;

TEST(UsbReadsTest, ReadThatFailsGivesOne)
{
    defineFailedUsbReads();
    defineFailedUsbReads(); // as for each provider
    const GObjectPointer<ArvDevice> device(arv_uv_device_new_from_guid(usb::kGuid, nullptr));
    ASSERT_NE(device, nullptr);
    usb::unplug();
    guint64 number = 0xdddddddddddddddd;
    EXPECT_FALSE(arv_device_read_memory(device.get(), 0, sizeof number, &number, nullptr));
    EXPECT_EQ(number, 1U);
    guint32 smaller = 0xdddddddd;
    EXPECT_FALSE(arv_device_read_memory(device.get(), 0, sizeof smaller, &smaller, nullptr));
    EXPECT_EQ(smaller, 1U);
}

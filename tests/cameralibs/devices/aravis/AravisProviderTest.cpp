#include "cameralibs/devices/aravis/AravisProvider.h"

#include "FakeUsb.h"

#include <arv.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace orvo;

namespace {

std::vector<Orvo::CAM_LINK> linksOf(DeviceProvider& provider)
{
    std::vector<Orvo::CAM_LINK> links;
    for (const DeviceInfo& info : provider.enumerate())
        links.push_back(info.link);
    return links;
}

} // namespace

// Aravis has cameras of its own that are none, as an example of kinds of which nothing is known here.
TEST(AravisProviderTest, OtherKindsOfCamerasAreNotLookedFor)
{
    usb::unplug();
    usb::plugIn();
    arv_enable_interface("Fake");
    const auto provider = makeAravisProvider(true, false);
    arv_update_device_list();
    EXPECT_EQ(arv_get_n_devices(), 1U);
    EXPECT_THAT(linksOf(*provider), ::testing::ElementsAre(Orvo::CAM_LINK_USB3_VISION));
    const auto none = makeAravisProvider(false, false);
    EXPECT_THAT(linksOf(*none), ::testing::IsEmpty());
}

TEST(AravisProviderTest, OtherKindsOfCamerasAreNotListed)
{
    usb::unplug();
    usb::plugIn();
    const auto provider = makeAravisProvider(true, false);
    arv_enable_interface("Fake");
    EXPECT_THAT(linksOf(*provider), ::testing::ElementsAre(Orvo::CAM_LINK_USB3_VISION));
    arv_disable_interface("Fake");
}

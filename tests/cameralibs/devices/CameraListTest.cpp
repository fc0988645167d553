// The cameras that ORVO_SIMULATED_CAMERAS selects.

#include "tests/cameralibs/devices/DescriptionText.h"
#include "tests/cameralibs/devices/SimulatedCamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

using namespace Orvo;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

struct Listed {
    std::vector<std::string> models;
    std::vector<std::string> serials;
    std::string complaint; ///< the text on standard error
};

Listed list(const char* value)
{
    Listed listed;
    ::testing::internal::CaptureStderr();
    {
        const Library library(value);
        for (std::uint32_t i = 0; i < Library::enumerate(); ++i) {
            const CAM_INFO info = Library::info(i);
            EXPECT_EQ(info.link, CAM_LINK_SIMULATED);
            EXPECT_STREQ(info.vendorName, "Simulated");
            listed.models.emplace_back(info.modelName);
            listed.serials.emplace_back(info.serialNumber);
        }
    }
    listed.complaint = ::testing::internal::GetCapturedStderr();
    return listed;
}

TEST(CameraListTest, ThreeWithoutTheVariable)
{
    for (const char* const value : {static_cast<const char*>(nullptr), "", "3"}) {
        const Listed listed = list(value);
        EXPECT_THAT(listed.models, ElementsAre("SIM-M1280", "SIM-C1920", "SIM-C5472"));
        EXPECT_THAT(listed.serials, ElementsAre("SIM-1", "SIM-2", "SIM-3"));
        EXPECT_EQ(listed.complaint, "");
    }
}

TEST(CameraListTest, AnyNumber)
{
    EXPECT_THAT(list("0").models, IsEmpty());
    EXPECT_THAT(list("1").models, ElementsAre("SIM-M1280"));
    EXPECT_THAT(list("5").models, ElementsAre("SIM-M1280", "SIM-C1920", "SIM-C5472", "SIM-M1280", "SIM-C1920"));
    EXPECT_THAT(list("5").serials, ElementsAre("SIM-1", "SIM-2", "SIM-3", "SIM-4", "SIM-5"));
}

TEST(CameraListTest, FilesFollowTheBuiltInOnes)
{
    const DescriptionFile first(descriptionOf("Lynx", "", ""));
    const DescriptionFile second(descriptionOf("Otter 5", "", ""));
    const std::string both = first.path() + "," + second.path();
    EXPECT_THAT(list((both + ",1").c_str()).models, ElementsAre("SIM-M1280", "Lynx", "Otter 5"));
    EXPECT_THAT(list((both + ",1").c_str()).serials, ElementsAre("SIM-1", "XML-1", "XML-2"));
    EXPECT_THAT(list(("0," + second.path()).c_str()).models, ElementsAre("Otter 5"));
    EXPECT_THAT(list(first.path().c_str()).models, SizeIs(4)) << "three built-in cameras if there is no number";
    EXPECT_EQ(list(both.c_str()).complaint, "");
}

TEST(CameraListTest, EveryBadItemIsReported)
{
    const Listed listed = list("1,many,/no/such/file.xml,/,-1");
    EXPECT_THAT(listed.models, ElementsAre("SIM-M1280"));
    EXPECT_THAT(listed.complaint, AllOf(HasSubstr("\"many\""), HasSubstr("\"/no/such/file.xml\""), HasSubstr("\"/\""),
                                        HasSubstr("\"-1\"")));
    EXPECT_EQ(std::count(listed.complaint.begin(), listed.complaint.end(), '\n'), 4);
}

TEST(CameraListTest, CameraWhoseFileIsNotWellFormedCannotBeOpened)
{
    const DescriptionFile broken(R"(<?xml version="1.0"?><RegisterDescription ModelName="Torn"><Category)");
    const DescriptionFile nothing("");
    const DescriptionFile useless(R"(<?xml version="1.0"?><RegisterDescription ModelName="Rootless"/>)");
    const Library library(("0," + broken.path() + "," + nothing.path() + "," + useless.path()).c_str());
    ASSERT_EQ(Library::enumerate(), 3U);
    EXPECT_STREQ(Library::info(0).modelName, "Torn");
    EXPECT_STREQ(Library::info(2).modelName, "Rootless");
    CAM_HANDLE camera = 0;
    EXPECT_EQ(Cam_Open(0, &camera, 0, 1, nullptr, 1), CAM_API_STS_XML_LOAD_ERR);
    EXPECT_EQ(Cam_Open(1, &camera, 0, 1, nullptr, 1), CAM_API_STS_XML_LOAD_ERR);
    EXPECT_EQ(Cam_Open(2, &camera, 0, 1, nullptr, 1), CAM_API_STS_GENICAM_ERR);
}

} // namespace

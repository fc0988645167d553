#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string outputOf(const std::string& command)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string output;
    char buffer[4096];
    while (pipe != nullptr && std::fgets(buffer, sizeof buffer, pipe.get()) != nullptr)
        output += buffer;
    return output;
}

std::vector<std::string> exportedSymbols(const std::string& library)
{
    std::istringstream lines(outputOf("nm -D --defined-only '" + library + "'"));
    std::vector<std::string> symbols;
    std::string address;
    std::string type;
    std::string name;
    while (lines >> address >> type >> name)
        symbols.push_back(name);
    return symbols;
}

} // namespace

TEST(ExportedSymbols, AreTheOperationsOfTheInterface)
{
    EXPECT_THAT(exportedSymbols(CAMERA_API_LIBRARY),
                ::testing::UnorderedElementsAre(
                    "Sys_Initialize", "Sys_Terminate", "Sys_GetInformation", "Sys_GetNumOfCameras", "Sys_CreateSignal",
                    "Sys_CloseSignal", "Sys_WaitForSignal", "Cam_GetInformation", "Cam_Open", "Cam_Close",
                    "Misc_GetLastGenICamError", "Strm_OpenSimple", "Strm_Close", "Strm_SetCallbackImageAcquired",
                    "Strm_SetCallbackImageError", "Strm_SetCallbackBufferBusy", "Strm_Start", "Strm_Stop",
                    "Strm_GetCurrentBufferIndex", "Strm_LockBuffer", "Strm_UnlockBuffer", "Nd_GetNode",
                    "Nd_GetNumOfFeatures", "Nd_GetFeatureByIndex", "Nd_GetName", "Nd_GetType", "Nd_GetAccessMode",
                    "Nd_GetVisibility", "Nd_GetDescription", "Nd_GetToolTip", "Nd_GetUnit", "Nd_GetRepresentation",
                    "Nd_GetFloatDisplayNotation", "Nd_GetFloatDisplayPrecision", "Nd_GetIntValue", "Nd_GetIntMin",
                    "Nd_GetIntMax", "Nd_GetIntInc", "Nd_GetFloatValue", "Nd_GetFloatMin", "Nd_GetFloatMax",
                    "Nd_GetFloatInc", "Nd_GetFloatHasInc", "Nd_GetBoolValue", "Nd_GetStrValue", "Nd_GetEnumStrValue",
                    "Nd_GetEnumIntValue", "Nd_GetNumOfEnumEntries", "Nd_GetEnumEntryByIndex", "Nd_GetEnumEntryStrValue",
                    "Nd_SetIntValue", "Nd_SetFloatValue", "Nd_SetBoolValue", "Nd_SetStrValue", "Nd_SetEnumStrValue",
                    "Nd_SetEnumIntValue", "Nd_CmdExecute"));
}

TEST(ExportedSymbols, AreTheOperationsOfTheUtilityLibrary)
{
    EXPECT_THAT(exportedSymbols(CAMERA_UTILITY_LIBRARY),
                ::testing::UnorderedElementsAre("PrepareLUT", "ConvImage", "GetCamWidth", "GetCamHeight",
                                                "GetCamPixelFormat", "GetCamTriggerMode", "GetCamTriggerSource",
                                                "ExecuteCamSoftwareTrigger", "GetCamIndexFromCamHandle"));
    EXPECT_THAT(outputOf("readelf -d '" CAMERA_UTILITY_LIBRARY "'"),
                ::testing::HasSubstr("Library soname: [libOrvoCamUtl_64.so.1]"));
}

TEST(ExportedSymbols, LibraryHasItsSonameAndStaysLoaded)
{
    const std::string dynamic = outputOf("readelf -d '" CAMERA_API_LIBRARY "'");
    EXPECT_THAT(dynamic, ::testing::HasSubstr("Library soname: [libOrvoCamApi_64.so.1]"));
    EXPECT_THAT(dynamic, ::testing::HasSubstr("NODELETE"));
}

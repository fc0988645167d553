// Ends with the number of USB3 Vision cameras as its exit status.

#include "camera/OrvoCamApi.h"

using namespace Orvo;

int main()
{
    std::uint32_t count = 0;
    const bool found = Sys_Initialize(CAM_LAYER_USB3_VISION) == CAM_API_STS_SUCCESS &&
                       Sys_GetNumOfCameras(&count) == CAM_API_STS_SUCCESS;
    (void)Sys_Terminate();
    return found ? static_cast<int>(count) : 100;
}

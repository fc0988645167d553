#include "camera/OrvoCamApi.h"

#include <cstdio>

#include <unistd.h>

using namespace Orvo;

int main()
{
    std::uint32_t count = 0;
    CAM_HANDLE camera = 0;
    // As a daemon does. Paths that the loader has found in the folder before lead nowhere now.
    if (::chdir("/") != 0)
        return 1;
    CAM_API_STATUS status = Sys_Initialize(CAM_LAYER_GIGE_VISION);
    // On a busy machine the first search may miss it.
    for (int search = 0; search < 10 && status == CAM_API_STS_SUCCESS && count == 0; ++search)
        status = Sys_GetNumOfCameras(&count);
    if (status == CAM_API_STS_SUCCESS)
        status = Cam_Open(0, &camera, 0, 1, nullptr, 1);
    std::printf("%u\n", status);
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return Sys_Terminate() == CAM_API_STS_SUCCESS ? 0 : 1;
}

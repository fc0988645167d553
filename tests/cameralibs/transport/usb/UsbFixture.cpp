#include "tests/cameralibs/transport/usb/UsbFixture.h"

using namespace Orvo;

ListedUsb::ListedUsb()
{
    usb::unplug();
    usb::plugIn();
    usb::announceRemoval(true);
    usb::answerCommands(true);
    EXPECT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), CAM_API_STS_SUCCESS);
    EXPECT_EQ(enumerate(), 1U);
}

ListedUsb::~ListedUsb()
{
    usb::unplugAtCommand(0);
    (void)Sys_Terminate();
}

std::uint32_t ListedUsb::enumerate()
{
    std::uint32_t count = 0;
    EXPECT_EQ(Sys_GetNumOfCameras(&count), CAM_API_STS_SUCCESS);
    return count;
}

CAM_API_STATUS ListedUsb::open(CAM_HANDLE* camera, CAM_SIGNAL_HANDLE signal)
{
    return Cam_Open(0, camera, signal, 1, nullptr, 1);
}

OpenUsb::OpenUsb()
{
    EXPECT_EQ(Sys_CreateSignal(&m_signal), CAM_API_STS_SUCCESS);
    EXPECT_EQ(open(&m_camera, m_signal), CAM_API_STS_SUCCESS);
}

CAM_API_STATUS OpenUsb::openStream()
{
    const CAM_API_STATUS status = Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, 4, nullptr);
    m_recorder.clear();
    if (status == CAM_API_STS_SUCCESS)
        m_recorder.attachTo(m_stream);
    return status;
}

void OpenUsb::replug()
{
    usb::plugIn();
    ASSERT_EQ(enumerate(), 1U);
    ASSERT_EQ(open(&m_camera, m_signal), CAM_API_STS_SUCCESS);
    ASSERT_EQ(openStream(), CAM_API_STS_SUCCESS);
}

StreamingUsb::StreamingUsb()
{
    EXPECT_EQ(openStream(), CAM_API_STS_SUCCESS);
}

StreamingUsb::~StreamingUsb()
{
    (void)Strm_Stop(m_stream);
}

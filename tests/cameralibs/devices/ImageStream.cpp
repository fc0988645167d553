#include "ImageStream.h"

#include "camera/OrvoCamUtl.h"
#include "tests/cameralibs/devices/SimulatedCamera.h"

#include <gtest/gtest.h>

#include <chrono>
#include <utility>

using namespace Orvo;

ImageStream::ImageStream(const SimulatedCamera& camera)
    : m_camera(camera)
{
    EXPECT_EQ(Strm_OpenSimple(camera.handle(), &m_stream, nullptr, nullptr, 8, nullptr), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_SetCallbackImageAcquired(m_stream, this, onImage), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_SetCallbackImageError(m_stream, this, onError), CAM_API_STS_SUCCESS);
    start();
}

ImageStream::~ImageStream()
{
    stop();
    EXPECT_EQ(Strm_Close(m_stream), CAM_API_STS_SUCCESS);
}

void ImageStream::start()
{
    m_numbers.clear();
    m_errors.clear();
    m_taken.clear();
    EXPECT_EQ(GetCamPixelFormat(m_camera.handle(), &m_frame.format), CAM_API_STS_SUCCESS);
    EXPECT_EQ(GetCamWidth(m_camera.handle(), &m_frame.width), CAM_API_STS_SUCCESS);
    EXPECT_EQ(GetCamHeight(m_camera.handle(), &m_frame.height), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
}

void ImageStream::stop()
{
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
}

std::vector<Picture> ImageStream::take(std::size_t count)
{
    {
        const std::lock_guard lock(m_mutex);
        m_taken.clear();
        m_wanted = count;
    }
    EXPECT_TRUE(wait([&] { return m_taken.size() == count; }));
    const std::lock_guard lock(m_mutex);
    m_wanted = 0;
    return std::move(m_taken);
}

bool ImageStream::waitForImages(std::size_t count)
{
    return wait([&] { return m_numbers.size() >= count; });
}

bool ImageStream::waitForErrors(std::size_t count)
{
    return wait([&] { return m_errors.size() >= count; });
}

std::size_t ImageStream::imageCount()
{
    const std::lock_guard lock(m_mutex);
    return m_numbers.size();
}

std::vector<std::uint64_t> ImageStream::numbers()
{
    const std::lock_guard lock(m_mutex);
    return m_numbers;
}

std::vector<CAM_API_STATUS> ImageStream::errors()
{
    const std::lock_guard lock(m_mutex);
    return m_errors;
}

void ImageStream::onImage(CAM_HANDLE, CAM_STRM_HANDLE, CAM_IMAGE_INFO* info, std::uint32_t, void* context)
{
    auto& self = *static_cast<ImageStream*>(context);
    const std::lock_guard lock(self.m_mutex);
    self.m_numbers.push_back(info->frameNumber);
    if (self.m_wanted > 0) {
        --self.m_wanted;
        Picture picture = self.m_frame;
        picture.number = info->frameNumber;
        picture.timestampNs = info->timestampNs;
        const auto* const bytes = static_cast<const std::uint8_t*>(info->data);
        picture.bytes.assign(bytes, bytes + info->dataSize);
        self.m_taken.push_back(std::move(picture));
    }
    self.m_changed.notify_all();
}

void ImageStream::onError(CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t status, std::uint32_t, void* context)
{
    auto& self = *static_cast<ImageStream*>(context);
    const std::lock_guard lock(self.m_mutex);
    self.m_errors.push_back(status);
    self.m_changed.notify_all();
}

template <typename Condition> bool ImageStream::wait(Condition condition)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::seconds(60), condition);
}

Picture takePicture(const SimulatedCamera& camera)
{
    ImageStream stream(camera);
    auto pictures = stream.take(1);
    return pictures.empty() ? Picture{} : std::move(pictures.front());
}

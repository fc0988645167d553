#include "tests/cameralibs/api/StreamRecorder.h"

#include "tests/cameralibs/api/CameraAccess.h"

#include <gtest/gtest.h>

#include <utility>

using namespace Orvo;

StreamRecorder::StreamRecorder(CAM_HANDLE camera)
    : m_camera(camera)
{
    EXPECT_EQ(Strm_OpenSimple(camera, &m_stream, nullptr, nullptr, 8, nullptr), CAM_API_STS_SUCCESS);
    attachTo(m_stream);
    start();
}

StreamRecorder::~StreamRecorder()
{
    if (m_stream == 0)
        return;
    stop();
    EXPECT_EQ(Strm_Close(m_stream), CAM_API_STS_SUCCESS);
}

void StreamRecorder::attachTo(CAM_STRM_HANDLE stream)
{
    EXPECT_EQ(Strm_SetCallbackImageAcquired(stream, this, imageCallback), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_SetCallbackImageError(stream, this, errorCallback), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_SetCallbackBufferBusy(stream, this, busyCallback), CAM_API_STS_SUCCESS);
}

void StreamRecorder::start()
{
    clear();
    std::int64_t format = 0;
    EXPECT_EQ(Nd_GetEnumIntValue(m_camera, nodeOf(m_camera, "PixelFormat"), &format), CAM_API_STS_SUCCESS);
    m_frame.format = static_cast<std::uint32_t>(format);
    m_frame.width = static_cast<std::uint32_t>(intOf(m_camera, "Width"));
    m_frame.height = static_cast<std::uint32_t>(intOf(m_camera, "Height"));
    EXPECT_EQ(Strm_Start(m_stream, 8), CAM_API_STS_SUCCESS);
}

void StreamRecorder::stop()
{
    EXPECT_EQ(Strm_Stop(m_stream), CAM_API_STS_SUCCESS);
}

std::vector<Picture> StreamRecorder::take(std::size_t count)
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

bool StreamRecorder::waitForImages(std::size_t count)
{
    return wait([&] { return m_images.size() >= count; });
}

bool StreamRecorder::waitForErrors(std::size_t count)
{
    return wait([&] { return m_errors.size() >= count; });
}

bool StreamRecorder::waitForBusy(std::size_t count)
{
    return wait([&] { return m_busy.size() >= count; });
}

std::vector<StreamRecorder::Image> StreamRecorder::images()
{
    const std::lock_guard lock(m_mutex);
    return m_images;
}

std::size_t StreamRecorder::imageCount()
{
    const std::lock_guard lock(m_mutex);
    return m_images.size();
}

std::vector<std::uint64_t> StreamRecorder::numbers()
{
    const std::lock_guard lock(m_mutex);
    std::vector<std::uint64_t> numbers;
    for (const Image& image : m_images)
        numbers.push_back(image.info.frameNumber);
    return numbers;
}

std::vector<CAM_API_STATUS> StreamRecorder::errors()
{
    const std::lock_guard lock(m_mutex);
    return m_errors;
}

std::vector<std::uint32_t> StreamRecorder::errorSlots()
{
    const std::lock_guard lock(m_mutex);
    return m_errorSlots;
}

std::vector<std::uint32_t> StreamRecorder::busy()
{
    const std::lock_guard lock(m_mutex);
    return m_busy;
}

int StreamRecorder::overlaps()
{
    const std::lock_guard lock(m_mutex);
    return m_overlaps;
}

void StreamRecorder::clear()
{
    const std::lock_guard lock(m_mutex);
    m_images.clear();
    m_errors.clear();
    m_errorSlots.clear();
    m_busy.clear();
    m_taken.clear();
}

void StreamRecorder::imageCallback(CAM_HANDLE camera, CAM_STRM_HANDLE stream, CAM_IMAGE_INFO* info, std::uint32_t slot,
                                   void* context)
{
    auto& self = *static_cast<StreamRecorder*>(context);
    self.enter();
    const Image image{camera, stream, *info, slot};
    if (self.onImage)
        self.onImage(image);
    self.leave([&] {
        self.m_images.push_back(image);
        if (self.m_wanted == 0)
            return;
        --self.m_wanted;
        Picture picture = self.m_frame;
        picture.number = info->frameNumber;
        picture.timestampNs = info->timestampNs;
        const auto* const bytes = static_cast<const std::uint8_t*>(info->data);
        picture.bytes.assign(bytes, bytes + info->dataSize);
        self.m_taken.push_back(std::move(picture));
    });
}

void StreamRecorder::errorCallback(CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t status, std::uint32_t slot, void* context)
{
    auto& self = *static_cast<StreamRecorder*>(context);
    self.enter();
    self.leave([&] {
        self.m_errors.push_back(status);
        self.m_errorSlots.push_back(slot);
    });
}

void StreamRecorder::busyCallback(CAM_HANDLE, CAM_STRM_HANDLE, std::uint32_t slot, void* context)
{
    auto& self = *static_cast<StreamRecorder*>(context);
    self.enter();
    self.leave([&] { self.m_busy.push_back(slot); });
}

void StreamRecorder::enter()
{
    const std::lock_guard lock(m_mutex);
    m_overlaps += m_inside > 0 ? 1 : 0;
    ++m_inside;
}

template <class Record> void StreamRecorder::leave(Record&& record)
{
    const std::lock_guard lock(m_mutex);
    --m_inside;
    record();
    m_changed.notify_all();
}

template <class Done> bool StreamRecorder::wait(Done&& done)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, kPatience, done);
}

Picture takePicture(CAM_HANDLE camera)
{
    auto pictures = StreamRecorder(camera).take(1);
    return pictures.empty() ? Picture{} : std::move(pictures.front());
}

#include "StreamRecorder.h"

#include "CameraAccess.h"

#include <gtest/gtest.h>

using namespace Orvo;

void StreamRecorder::attachTo(CAM_STRM_HANDLE stream)
{
    EXPECT_EQ(Strm_SetCallbackImageAcquired(stream, this, imageCallback), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_SetCallbackImageError(stream, this, errorCallback), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_SetCallbackBufferBusy(stream, this, busyCallback), CAM_API_STS_SUCCESS);
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
}

void StreamRecorder::imageCallback(CAM_HANDLE camera, CAM_STRM_HANDLE stream, CAM_IMAGE_INFO* info, std::uint32_t slot,
                                   void* context)
{
    auto& self = *static_cast<StreamRecorder*>(context);
    self.enter();
    const Image image{camera, stream, *info, slot};
    if (self.onImage)
        self.onImage(image);
    self.leave([&] { self.m_images.push_back(image); });
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

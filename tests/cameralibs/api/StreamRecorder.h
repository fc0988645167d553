#pragma once

#include "camera/OrvoCamApi.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <vector>

/// Records what a stream's callbacks bring, for a test to wait for.
class StreamRecorder {
public:
    struct Image {
        Orvo::CAM_HANDLE camera;
        Orvo::CAM_STRM_HANDLE stream;
        Orvo::CAM_IMAGE_INFO info;
        std::uint32_t slot;
    };

    void attachTo(Orvo::CAM_STRM_HANDLE stream);

    /// Runs inside every image callback. Set while nothing is started.
    std::function<void(const Image&)> onImage;

    /// False where the images do not come within a generous time.
    [[nodiscard]] bool waitForImages(std::size_t count);
    [[nodiscard]] bool waitForErrors(std::size_t count);
    [[nodiscard]] bool waitForBusy(std::size_t count);

    [[nodiscard]] std::vector<Image> images();
    [[nodiscard]] std::vector<Orvo::CAM_API_STATUS> errors();
    [[nodiscard]] std::vector<std::uint32_t> errorSlots();
    [[nodiscard]] std::vector<std::uint32_t> busy();

    /// Callbacks that began before another one had ended.
    [[nodiscard]] int overlaps();
    void clear();

private:
    static void imageCallback(Orvo::CAM_HANDLE, Orvo::CAM_STRM_HANDLE, Orvo::CAM_IMAGE_INFO*, std::uint32_t, void*);
    static void errorCallback(Orvo::CAM_HANDLE, Orvo::CAM_STRM_HANDLE, std::uint32_t, std::uint32_t, void*);
    static void busyCallback(Orvo::CAM_HANDLE, Orvo::CAM_STRM_HANDLE, std::uint32_t, void*);

    void enter();
    template <class Record> void leave(Record&& record);
    template <class Done> [[nodiscard]] bool wait(Done&& done);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Image> m_images;
    std::vector<Orvo::CAM_API_STATUS> m_errors;
    std::vector<std::uint32_t> m_errorSlots;
    std::vector<std::uint32_t> m_busy;
    int m_inside = 0;
    int m_overlaps = 0;
};

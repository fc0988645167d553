#pragma once

#include "camera/OrvoCamApi.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

/// A copy of one image.
struct Picture {
    std::uint32_t format = 0; ///< PFNC value
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint64_t number = 0;
    std::uint64_t timestampNs = 0;
    std::vector<std::uint8_t> bytes;

    /// The value of a pixel of a Mono8 or BayerRG8 image.
    [[nodiscard]] int at(std::uint32_t x, std::uint32_t y) const
    {
        return bytes[static_cast<std::size_t>(y) * width + x];
    }
};

/// Records the callbacks of a stream, so that a test can wait for them.
class StreamRecorder {
public:
    struct Image {
        Orvo::CAM_HANDLE camera;
        Orvo::CAM_STRM_HANDLE stream;
        Orvo::CAM_IMAGE_INFO info;
        std::uint32_t slot;
    };

    /// Records streams that the test opens and attaches.
    StreamRecorder() = default;

    /// Opens and starts a stream of this camera. The recorder closes it.
    explicit StreamRecorder(Orvo::CAM_HANDLE camera);

    ~StreamRecorder();
    StreamRecorder(const StreamRecorder&) = delete;
    StreamRecorder& operator=(const StreamRecorder&) = delete;

    void attachTo(Orvo::CAM_STRM_HANDLE stream);

    /// For the stream that the recorder opened. Starting discards earlier records.
    void start();
    void stop();

    /// Called inside every image callback. To be set while no stream runs.
    std::function<void(const Image&)> onImage;

    /// Copies the next images; fewer if they do not arrive within a generous time. For the stream that the recorder
    /// opened.
    [[nodiscard]] std::vector<Picture> take(std::size_t count);

    /// False if the images do not arrive within a generous time.
    [[nodiscard]] bool waitForImages(std::size_t count);
    [[nodiscard]] bool waitForErrors(std::size_t count);
    [[nodiscard]] bool waitForBusy(std::size_t count);

    [[nodiscard]] std::vector<Image> images();
    [[nodiscard]] std::size_t imageCount();
    [[nodiscard]] std::vector<std::uint64_t> numbers(); ///< of the images
    [[nodiscard]] std::vector<Orvo::CAM_API_STATUS> errors();
    [[nodiscard]] std::vector<std::uint32_t> errorSlots();
    [[nodiscard]] std::vector<std::uint32_t> busy();

    /// Number of callbacks that began before another one had returned.
    [[nodiscard]] int overlaps();
    void clear();

private:
    static void imageCallback(Orvo::CAM_HANDLE, Orvo::CAM_STRM_HANDLE, Orvo::CAM_IMAGE_INFO*, std::uint32_t, void*);
    static void errorCallback(Orvo::CAM_HANDLE, Orvo::CAM_STRM_HANDLE, std::uint32_t, std::uint32_t, void*);
    static void busyCallback(Orvo::CAM_HANDLE, Orvo::CAM_STRM_HANDLE, std::uint32_t, void*);

    void enter();
    template <class Record> void leave(Record&& record);
    template <class Done> [[nodiscard]] bool wait(Done&& done);

    Orvo::CAM_HANDLE m_camera = 0;
    Orvo::CAM_STRM_HANDLE m_stream = 0; ///< the stream that the recorder opened, if any
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Image> m_images;
    std::vector<Orvo::CAM_API_STATUS> m_errors;
    std::vector<std::uint32_t> m_errorSlots;
    std::vector<std::uint32_t> m_busy;
    int m_inside = 0;
    int m_overlaps = 0;
    Picture m_frame;          ///< format and size that the camera reports
    std::size_t m_wanted = 0; ///< images that take() still waits for
    std::vector<Picture> m_taken;
};

/// Takes one image with the camera's present settings.
[[nodiscard]] Picture takePicture(Orvo::CAM_HANDLE camera);

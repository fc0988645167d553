#pragma once

#include "camera/OrvoCamApi.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

class SimulatedCamera;

/// One image, copied.
struct Picture {
    std::uint32_t format = 0; ///< of the PFNC
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

/// The images of a camera, from its making to its end.
class ImageStream {
public:
    explicit ImageStream(const SimulatedCamera& camera);
    ~ImageStream();
    ImageStream(const ImageStream&) = delete;
    ImageStream& operator=(const ImageStream&) = delete;

    void start();
    void stop();

    /// Waits for the next images that begin after the call; fewer where they do not come within a generous time.
    [[nodiscard]] std::vector<Picture> take(std::size_t count);

    /// Waits until so many images, or errors, came since the start; false where they do not come.
    [[nodiscard]] bool waitForImages(std::size_t count);
    [[nodiscard]] bool waitForErrors(std::size_t count);

    [[nodiscard]] std::size_t imageCount();
    [[nodiscard]] std::vector<std::uint64_t> numbers();
    [[nodiscard]] std::vector<Orvo::CAM_API_STATUS> errors();

private:
    static void onImage(Orvo::CAM_HANDLE, Orvo::CAM_STRM_HANDLE, Orvo::CAM_IMAGE_INFO*, std::uint32_t, void*);
    static void onError(Orvo::CAM_HANDLE, Orvo::CAM_STRM_HANDLE, std::uint32_t, std::uint32_t, void*);
    template <typename Condition> bool wait(Condition condition);

    const SimulatedCamera& m_camera;
    Orvo::CAM_STRM_HANDLE m_stream = 0;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::uint64_t> m_numbers;
    std::vector<Orvo::CAM_API_STATUS> m_errors;
    std::size_t m_wanted = 0; ///< pictures to be copied yet
    Picture m_frame;          ///< what the camera says of its images
    std::vector<Picture> m_taken;
};

/// One image with the settings of the moment.
[[nodiscard]] Picture takePicture(const SimulatedCamera& camera);

// Takes ten images with the first camera and saves them as image-1.ppm ... image-10.ppm.
//
//     grab-images [FOLDER]
//
// Build it with the CMakeLists.txt beside it, or by hand:
//
//     g++ -std=c++17 grab-images.cpp $(pkg-config --cflags --libs orvocam) -o grab-images

#include <OrvoCamApi.h>
#include <OrvoCamUtl.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <string>
#include <vector>

namespace {

constexpr int kImages = 10;
constexpr std::uint32_t kBuffers = 8;
constexpr std::chrono::seconds kPatience(5);

// Shared by the library's thread, which reports images, and the main thread, which saves them.
struct Arrival {
    std::mutex mutex;
    std::condition_variable changed;
    std::uint64_t images = 0;
};

// Runs on a thread of the library, which waits for it to return. So it only counts the image.
void imageAcquired(Orvo::CAM_HANDLE, Orvo::CAM_STRM_HANDLE, Orvo::CAM_IMAGE_INFO*, std::uint32_t, void* context)
{
    auto& arrival = *static_cast<Arrival*>(context);
    const std::lock_guard lock(arrival.mutex);
    ++arrival.images;
    arrival.changed.notify_one();
}

// Every failure ends the program with this exception. Sys_Terminate closes whatever is open.
struct Failure {
    std::string what;
    Orvo::CAM_API_STATUS status;
};

void check(Orvo::CAM_API_STATUS status, const char* what)
{
    if (status != Orvo::CAM_API_STS_SUCCESS)
        throw Failure{what, status};
}

struct Format {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t pixelFormat = 0;
};

// ConvImage writes four bytes per pixel: blue, green, red, 255. A PPM file has three: red, green, blue.
void save(const std::vector<std::uint8_t>& bgra, const Format& format, const std::string& fileName)
{
    std::ofstream file(fileName, std::ios::binary);
    file << "P6\n" << format.width << ' ' << format.height << "\n255\n";
    for (std::size_t i = 0; i < bgra.size(); i += 4)
        file.put(static_cast<char>(bgra[i + 2])).put(static_cast<char>(bgra[i + 1])).put(static_cast<char>(bgra[i]));
    if (!file.flush())
        throw Failure{"cannot write " + fileName, Orvo::CAM_API_STS_FILE_WRITE_ERROR};
    std::printf("%s\n", fileName.c_str());
}

void grab(const std::string& folder)
{
    std::uint32_t count = 0;
    check(Orvo::Sys_GetNumOfCameras(&count), "Sys_GetNumOfCameras");
    if (count == 0)
        throw Failure{"there is no camera", Orvo::CAM_API_STS_NOT_FOUND};

    Orvo::CAM_HANDLE camera = 0;
    check(Orvo::Cam_Open(0, &camera, 0, 1, nullptr, 1), "Cam_Open");
    Format format;
    check(Orvo::GetCamWidth(camera, &format.width), "GetCamWidth");
    check(Orvo::GetCamHeight(camera, &format.height), "GetCamHeight");
    check(Orvo::GetCamPixelFormat(camera, &format.pixelFormat), "GetCamPixelFormat");

    Arrival arrival;
    Orvo::CAM_STRM_HANDLE stream = 0;
    check(Orvo::Strm_OpenSimple(camera, &stream, nullptr, nullptr, kBuffers, nullptr), "Strm_OpenSimple");
    check(Orvo::Strm_SetCallbackImageAcquired(stream, &arrival, imageAcquired), "Strm_SetCallbackImageAcquired");
    check(Orvo::Strm_Start(stream, kBuffers), "Strm_Start");

    // Once the stream is stopped no callback runs, so `arrival` may be destroyed when the function returns or throws.
    struct Stopper {
        Orvo::CAM_STRM_HANDLE stream;
        ~Stopper() { static_cast<void>(Orvo::Strm_Stop(stream)); }
    } const stopper{stream};

    std::vector<std::uint8_t> bgra(std::size_t{4} * format.width * format.height);
    std::uint64_t seen = 0;
    for (int saved = 0; saved < kImages;) {
        {
            std::unique_lock lock(arrival.mutex);
            if (!arrival.changed.wait_for(lock, kPatience, [&] { return arrival.images > seen; }))
                throw Failure{"no image came", Orvo::CAM_API_STS_TIMEOUT};
            seen = arrival.images;
        }
        // The newest image. While its buffer is locked the camera's next images go to the others.
        std::uint32_t index = 0;
        Orvo::CAM_IMAGE_INFO info{};
        check(Orvo::Strm_GetCurrentBufferIndex(stream, &index), "Strm_GetCurrentBufferIndex");
        check(Orvo::Strm_LockBuffer(stream, index, &info), "Strm_LockBuffer");
        const bool complete = info.status == Orvo::CAM_API_STS_SUCCESS;
        Orvo::CAM_API_STATUS converted = Orvo::CAM_API_STS_SUCCESS;
        if (complete) {
            converted = Orvo::ConvImage(0, format.pixelFormat, 1, bgra.data(), info.data, format.width, format.height);
        }
        check(Orvo::Strm_UnlockBuffer(stream, index), "Strm_UnlockBuffer");
        check(converted, "ConvImage");
        if (complete)
            save(bgra, format, folder + "/image-" + std::to_string(++saved) + ".ppm");
    }
}

} // namespace

int main(int argc, char* argv[])
{
    int result = 0;
    try {
        check(Orvo::Sys_Initialize(65535), "Sys_Initialize");
        check(Orvo::PrepareLUT(), "PrepareLUT");
        grab(argc > 1 ? argv[1] : ".");
    } catch (const Failure& failure) {
        std::fprintf(stderr, "%s (status %u)\n", failure.what.c_str(), failure.status);
        result = 1;
    }
    static_cast<void>(Orvo::Sys_Terminate());
    return result;
}

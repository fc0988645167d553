#include "benchmarks/AravisPeer.h"

#include "benchmarks/Process.h"
#include "cameralibs/base/GlibOwners.h"

#include <arv.h>

#include <atomic>
#include <thread>

using cameralibs::GErrorPointer;
using cameralibs::GObjectPointer;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kBuffers = 8;
constexpr int kSocketBufferSize = 33'554'432;
constexpr guint64 kPopMicroseconds = 100'000;

GObjectPointer<ArvDevice> openFirst()
{
    const char* const id = arv_get_n_devices() == 0 ? nullptr : arv_get_device_id(0);
    return GObjectPointer<ArvDevice>(id == nullptr ? nullptr : arv_open_device(id, nullptr));
}

bool apply(ArvDevice* device, const aravis::Images& settings)
{
    GErrorPointer errors[4];
    arv_device_set_integer_feature_value(device, "Width", settings.width, errors[0].out());
    arv_device_set_integer_feature_value(device, "Height", settings.height, errors[1].out());
    arv_device_set_string_feature_value(device, "PixelFormat", settings.format, errors[2].out());
    arv_device_set_float_feature_value(device, "AcquisitionFrameRate", settings.rate, errors[3].out());
    return !errors[0] && !errors[1] && !errors[2] && !errors[3];
}

GObjectPointer<ArvStream> makeStream(ArvDevice* device)
{
    arv_gv_device_set_stream_options(ARV_GV_DEVICE(device), ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
    arv_gv_device_auto_packet_size(ARV_GV_DEVICE(device), nullptr);
    GObjectPointer<ArvStream> stream(arv_device_create_stream(device, nullptr, nullptr, nullptr));
    if (stream == nullptr)
        return stream;
    g_object_set(stream.get(), "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED, "socket-buffer-size",
                 kSocketBufferSize, nullptr);
    const auto size = static_cast<gsize>(arv_device_get_integer_feature_value(device, "PayloadSize", nullptr));
    for (int i = 0; i < kBuffers; ++i)
        arv_stream_push_buffer(stream.get(), arv_buffer_new_allocate(size));
    return stream;
}

} // namespace

namespace aravis {

bool search()
{
    arv_disable_interface("USB3Vision");
    arv_update_device_list();
    return arv_get_n_devices() != 0;
}

double open()
{
    const auto begin = Clock::now();
    const auto device = openFirst();
    const std::chrono::duration<double, std::milli> taken = Clock::now() - begin;
    return device == nullptr ? -1 : taken.count();
}

Streamed stream(const Images& settings, std::chrono::seconds time)
{
    const auto device = openFirst();
    if (device == nullptr || !apply(device.get(), settings))
        return {};
    const auto source = makeStream(device.get());
    if (source == nullptr)
        return {};
    Streamed streamed{};
    std::atomic<bool> ended{false};
    const double before = process::processorSeconds();
    std::thread receiver([&] {
        while (!ended) {
            ArvBuffer* const buffer = arv_stream_timeout_pop_buffer(source.get(), kPopMicroseconds);
            if (buffer == nullptr)
                continue;
            ++(arv_buffer_get_status(buffer) == ARV_BUFFER_STATUS_SUCCESS ? streamed.images : streamed.failed);
            arv_stream_push_buffer(source.get(), buffer);
        }
    });
    arv_device_execute_command(device.get(), "AcquisitionStart", nullptr);
    std::this_thread::sleep_for(time);
    arv_device_execute_command(device.get(), "AcquisitionStop", nullptr);
    ended = true;
    receiver.join();
    streamed.processorSeconds = process::processorSeconds() - before;
    return streamed;
}

} // namespace aravis

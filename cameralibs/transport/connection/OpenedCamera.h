#pragma once

#include "cameralibs/base/GlibOwners.h"
#include "cameralibs/devices/Device.h"
#include "cameralibs/transport/Protocol.h"
#include "cameralibs/transport/Reception.h"
#include "cameralibs/transport/connection/ImageSender.h"
#include "cameralibs/transport/gige/GigeProbe.h"

#include <arv.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace cameralibs::transport {

/// The one camera of this process. When the camera turns out to be gone, the process ends.
class OpenedCamera {
public:
    OpenedCamera() = default;
    ~OpenedCamera() { close(); }
    OpenedCamera(const OpenedCamera&) = delete;
    OpenedCamera& operator=(const OpenedCamera&) = delete;

    [[nodiscard]] Outcome open(Orvo::CAM_LINK link, const std::string& name);

    /// The functions below require an open camera.
    [[nodiscard]] bool isOpen() const noexcept { return m_device != nullptr; }
    [[nodiscard]] std::string_view description() const;

    /// The outcome of a register access: 0, or 1 + the number of an ArvDeviceError.
    struct Access {
        std::uint32_t error = 0;
        std::string text;
    };
    [[nodiscard]] Access read(std::uint64_t address, std::uint32_t size, char* to);
    [[nodiscard]] Access write(std::uint64_t address, std::string_view bytes);

    [[nodiscard]] Outcome openSource(const Descriptor& memory, std::uint64_t size);
    [[nodiscard]] Outcome start(Descriptor channel);
    void stop();

    /// Releases control of the camera. If it answers, other programs can open it afterwards.
    void close();

private:
    [[nodiscard]] Outcome makeReception(std::unique_ptr<Reception>& reception);
    [[nodiscard]] bool takesRegistersFor(std::uint64_t size) const;

    GObjectPointer<ArvDevice> m_device;
    bool m_oldDescription = false;
    std::optional<GigeProbe> m_probe;
    std::unique_ptr<ImageSender> m_images;
};

} // namespace cameralibs::transport

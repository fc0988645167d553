#pragma once

#include "tests/cameralibs/transport/gige/Protocol.h"

#include <optional>
#include <string>

namespace gige {

// The camera's own registers, as in its description.
constexpr std::uint32_t kWidth = 0x8000;
constexpr std::uint32_t kHeight = 0x8004;
constexpr std::uint32_t kPixelFormat = 0x8008;
constexpr std::uint32_t kPayloadSize = 0x800c;
constexpr std::uint32_t kFrameRate = 0x8010; ///< a float
constexpr std::uint32_t kAcquisition = 0x8014;
constexpr std::uint32_t kTriggerMode = 0x8018;
constexpr std::uint32_t kTriggerSource = 0x801c;
constexpr std::uint32_t kTrigger = 0x8020;
constexpr std::uint32_t kTransportLocked = 0x8024;
constexpr std::uint32_t kExposure = 0x8028;
constexpr std::uint32_t kTestText = 0x8040;       ///< of 32 bytes
constexpr std::uint32_t kTestDelay = 0x8060;      ///< of accesses to the registers before it, in milliseconds
constexpr std::uint32_t kTestImageDelay = 0x8068; ///< of the packets of images, in milliseconds
constexpr std::uint32_t kTestPending = 0x8064;    ///< 0, or a PendingAnswers

constexpr std::uint32_t kDescriptionAddress = 0x100000;

constexpr std::uint32_t kMono8 = 0x01080001;
constexpr std::uint32_t kMono16 = 0x01100007;
constexpr std::uint32_t kRgb8 = 0x02180014;

/// What can be read of a camera, and written.
class CameraMemory {
public:
    /// With the standard's registers and the camera's own as they are after power-on.
    CameraMemory(std::uint32_t address, const std::string& serialNumber);

    /// Nothing for an address that is not there.
    [[nodiscard]] std::optional<Bytes> read(std::uint32_t address, std::size_t size) const;

    /// A status.
    [[nodiscard]] std::uint16_t write(std::uint32_t address, const Bytes& data);

    [[nodiscard]] std::uint32_t value(std::uint32_t address) const { return get<std::uint32_t>(m_registers, address); }
    void setValue(std::uint32_t address, std::uint32_t value) { put(m_registers, address, value); }

    /// Bytes that width, height and pixel format make.
    [[nodiscard]] std::size_t imageSize() const;

    /// Fills the rest of the field with zeros.
    void setText(std::uint32_t address, const std::string& text, std::size_t size);

    /// Puts the description behind the first URL under this file name.
    void setDescription(Bytes description, const std::string& fileName);

    [[nodiscard]] Bytes& registers() { return m_registers; }
    [[nodiscard]] const Bytes& description() const { return m_description; }

private:
    Bytes m_registers;
    Bytes m_description;
};

} // namespace gige

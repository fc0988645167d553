#include "tests/cameralibs/transport/gige/CameraMemory.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>

namespace gige {

namespace {

constexpr std::size_t kRegistersSize = 0x8100;

constexpr std::uint32_t kLargestSide = 2048;

/// What the honest camera lets a program write; everything else is read-only.
constexpr std::array kWritable = {
    kHeartbeat, kPrivilege,   kStreamPort,      kStreamPacketSize, kStreamAddress,  kWidth,
    kHeight,    kPixelFormat, kFrameRate,       kAcquisition,      kTriggerMode,    kTriggerSource,
    kTrigger,   kExposure,    kTransportLocked, kTestDelay,        kTestImageDelay, kTestPending,
};

constexpr std::size_t kTestTextSize = 32;

bool writable(std::uint32_t address, std::size_t size)
{
    if (address >= kTestText && address + size <= kTestText + kTestTextSize)
        return true;
    return size == 4 && std::find(kWritable.begin(), kWritable.end(), address) != kWritable.end();
}

/// What the camera takes for its own registers. The standard's are not looked at, as the camera gives them no meaning
/// beyond their use.
bool acceptable(std::uint32_t address, std::uint32_t value)
{
    switch (address) {
    case kWidth:
    case kHeight:
        return value >= 1 && value <= kLargestSide;
    case kPixelFormat:
        return value == kMono8 || value == kMono16 || value == kRgb8;
    default:
        return true;
    }
}

} // namespace

CameraMemory::CameraMemory(std::uint32_t address, const std::string& serialNumber)
    : m_registers(kRegistersSize)
{
    setValue(kVersion, 0x00010002);
    setValue(kDeviceMode, 0x80000001); // big-endian, characters in UTF-8
    setValue(kMacHigh, 0x0200);        // administered locally
    setValue(kMacLow, address);
    setValue(kAddress, address);
    setValue(kSubnetMask, 0xff000000);
    setText(kManufacturer, "Test Maker", 32);
    setText(kModel, "GV-Test", 32);
    setText(kDeviceVersion, "1", 32);
    setText(kSerialNumber, serialNumber, 16);
    setValue(kInterfaces, 1);
    setValue(kStreamChannels, 1);
    setValue(kCapability, kCanConcatenate | kCanWriteMemory | kCanResend);
    setValue(kHeartbeat, 3000);
    setValue(kTickFrequencyLow, 1'000'000'000);
    setValue(kStreamPacketSize, 1400);

    setValue(kWidth, 512);
    setValue(kHeight, 512);
    setValue(kPixelFormat, kMono8);
    setValue(kPayloadSize, 512 * 512);
    const float rate = 25.0F;
    std::uint32_t rateBits = 0;
    std::memcpy(&rateBits, &rate, sizeof rateBits);
    setValue(kFrameRate, rateBits);
    setText(kTestText, "as delivered", kTestTextSize);

    std::ifstream file(GIGE_CAMERA_DESCRIPTION, std::ios::binary);
    setDescription(Bytes(std::istreambuf_iterator<char>(file), {}), "gv-test.xml");
}

std::optional<Bytes> CameraMemory::read(std::uint32_t address, std::size_t size) const
{
    const auto within = [&](std::uint64_t start, const Bytes& block) -> std::optional<Bytes> {
        if (address < start || address - start + size > block.size())
            return {};
        const auto begin = block.begin() + static_cast<std::ptrdiff_t>(address - start);
        return Bytes(begin, begin + static_cast<std::ptrdiff_t>(size));
    };
    if (auto registers = within(0, m_registers))
        return registers;
    return within(kDescriptionAddress, m_description);
}

std::uint16_t CameraMemory::write(std::uint32_t address, const Bytes& data)
{
    if (address + data.size() > m_registers.size())
        return kInvalidAddress;
    if (address % 4 != 0 || data.size() % 4 != 0)
        return kBadAlignment;
    if (!writable(address, data.size()))
        return kWriteProtected;
    if (!acceptable(address, get<std::uint32_t>(data, 0)))
        return kInvalidParameter;
    std::copy(data.begin(), data.end(), m_registers.begin() + address);
    if (address == kWidth || address == kHeight || address == kPixelFormat)
        setValue(kPayloadSize, static_cast<std::uint32_t>(imageSize()));
    return kSuccess;
}

std::size_t CameraMemory::imageSize() const
{
    const std::size_t bytesPerPixel = (value(kPixelFormat) >> 16U & 0xffU) / 8;
    return std::size_t{value(kWidth)} * value(kHeight) * bytesPerPixel;
}

void CameraMemory::setText(std::uint32_t address, const std::string& text, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        m_registers[address + i] = i < text.size() ? static_cast<std::uint8_t>(text[i]) : 0;
}

void CameraMemory::setDescription(Bytes description, const std::string& fileName)
{
    std::ostringstream url;
    url << "Local:" << fileName << ";" << std::hex << kDescriptionAddress << ";" << description.size();
    setText(kFirstUrl, url.str(), kUrlSize);
    m_description = std::move(description);
    m_description.resize((m_description.size() + 3) / 4 * 4);
}

} // namespace gige

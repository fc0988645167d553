#pragma once

#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/simulated/file/FileNodes.h"
#include "cameralibs/devices/simulated/images/Acquisition.h"
#include "cameralibs/devices/simulated/images/DeviceClock.h"
#include "cameralibs/devices/simulated/registers/RegisterDevice.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace cameralibs::simulated {

/// The contents of a GenICam description file.
struct DescriptionFile {
    std::string xml;
    std::string model; ///< ModelName of the description; the file's name if that cannot be read
};

/// nullopt if the file cannot be read.
[[nodiscard]] std::optional<DescriptionFile> readDescriptionFile(const std::string& path);

/// Register memory over the whole 64-bit address space, because a description file may use any address. Unwritten bytes
/// read as zero.
class SparseMemory : public RegisterSpace {
public:
    [[nodiscard]] AccessResult read(std::uint64_t address, void* buffer, std::uint32_t size) override;
    [[nodiscard]] AccessResult write(std::uint64_t address, const void* buffer, std::uint32_t size) override;

private:
    static constexpr std::size_t kPageSize = 4096;
    using Page = std::array<std::uint8_t, kPageSize>;

    std::mutex m_mutex;
    std::map<std::uint64_t, Page> m_pages; ///< by address / kPageSize
};

/// An opened camera made from a description file. Its registers are plain memory, and its images show the test scene.
class FileCamera : public Device, private RegisterSpace {
public:
    /// `file` must outlive the camera.
    FileCamera(const DescriptionFile& file, DeviceInfo info);

    [[nodiscard]] const DeviceInfo& info() const override { return m_info; }
    [[nodiscard]] ArvDevice* registers() override { return m_arvDevice.get(); }
    void useNodes(NodeMap& nodes) override;
    [[nodiscard]] Outcome description(std::string& xml) override;
    [[nodiscard]] Outcome openSource(FrameSink& sink, const ImageMemory& memory,
                                     const std::vector<FrameBuffer*>& buffers,
                                     std::unique_ptr<FrameSource>& source) override;

    /// Such a camera cannot be unplugged.
    void onRemoval(std::function<void(const std::string&)>) override {}

private:
    [[nodiscard]] AccessResult read(std::uint64_t address, void* buffer, std::uint32_t size) override;
    [[nodiscard]] AccessResult write(std::uint64_t address, const void* buffer, std::uint32_t size) override;

    const DescriptionFile& m_file;
    DeviceInfo m_info;
    SparseMemory m_memory;
    Acquisition m_acquisition;
    DeviceClock m_clock;
    GObjectPointer<ArvDevice> m_arvDevice;
    std::unique_ptr<FileNodes> m_nodes;
};

} // namespace cameralibs::simulated

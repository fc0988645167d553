#pragma once

#include "cameralibs/devices/Device.h"
#include "cameralibs/devices/simulated/file/DescriptionFile.h"
#include "cameralibs/devices/simulated/file/FileNodes.h"
#include "cameralibs/devices/simulated/images/Acquisition.h"
#include "cameralibs/devices/simulated/images/DeviceClock.h"
#include "cameralibs/devices/simulated/registers/RegisterDevice.h"
#include "cameralibs/devices/simulated/registers/SparseMemory.h"

#include <memory>
#include <string>

namespace cameralibs::simulated {

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

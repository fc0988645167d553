#include "cameralibs/devices/simulated/file/FileCamera.h"

#include "cameralibs/devices/simulated/images/FrameGenerator.h"

#include <utility>

namespace cameralibs::simulated {

namespace {

/// Generated images with the settings that the registers have when the source starts.
class FileImages : public FrameSource {
public:
    FileImages(const FileNodes& nodes, Acquisition& acquisition, const DeviceClock& clock, FrameSink& sink,
               const std::vector<FrameBuffer*>& buffers)
        : m_nodes(nodes)
        , m_acquisition(acquisition)
        , m_generator(acquisition, clock, sink, buffers)
    {
    }

    [[nodiscard]] Outcome start() override
    {
        const auto settings = m_nodes.settings();
        if (!settings) {
            return {Orvo::CAM_API_STS_NOT_IMPLEMENTED,
                    "There are no images of the size and pixel format that the registers tell"};
        }
        // Only the description knows how its camera starts an acquisition, so images flow as soon as the source starts.
        m_acquisition.configure(*settings);
        m_acquisition.start();
        return m_generator.start();
    }

    void stop() override { m_generator.stop(); }

private:
    const FileNodes& m_nodes;
    Acquisition& m_acquisition;
    FrameGenerator m_generator;
};

} // namespace

FileCamera::FileCamera(const DescriptionFile& file, DeviceInfo info)
    : m_file(file)
    , m_info(std::move(info))
    , m_arvDevice(makeRegisterDevice(*this, file.xml))
{
}

void FileCamera::useNodes(NodeMap& nodes)
{
    m_nodes = std::make_unique<FileNodes>(nodes);
    m_nodes->powerUp(m_info.model, m_info.serial);
}

Outcome FileCamera::description(std::string& xml)
{
    xml = m_file.xml;
    return {};
}

Outcome FileCamera::openSource(FrameSink& sink, const ImageMemory& /*memory*/, const std::vector<FrameBuffer*>& buffers,
                               std::unique_ptr<FrameSource>& source)
{
    source = std::make_unique<FileImages>(*m_nodes, m_acquisition, m_clock, sink, buffers);
    return {};
}

AccessResult FileCamera::read(std::uint64_t address, void* buffer, std::uint32_t size)
{
    return m_memory.read(address, buffer, size);
}

AccessResult FileCamera::write(std::uint64_t address, const void* buffer, std::uint32_t size)
{
    const AccessResult result = m_memory.write(address, buffer, size);
    m_nodes->updatePayloadSize();
    return result;
}

} // namespace cameralibs::simulated

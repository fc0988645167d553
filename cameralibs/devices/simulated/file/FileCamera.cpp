#include "cameralibs/devices/simulated/file/FileCamera.h"

#include "cameralibs/base/QuietXml.h"
#include "cameralibs/devices/simulated/images/FrameGenerator.h"

#include <libxml/xmlreader.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <utility>

namespace cameralibs::simulated {

namespace {

constexpr std::uintmax_t kMaxFileSize = 64U << 20;

// Reads the root element only, so that a file that is malformed further down still gets a name.
std::string modelName(const std::string& xml)
{
    constexpr int kQuiet = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    const QuietXml quiet;
    const std::unique_ptr<xmlTextReader, decltype(&xmlFreeTextReader)> reader(
        xmlReaderForMemory(xml.data(), static_cast<int>(xml.size()), nullptr, nullptr, kQuiet), xmlFreeTextReader);
    if (reader == nullptr)
        return {};
    while (xmlTextReaderRead(reader.get()) == 1) {
        if (xmlTextReaderNodeType(reader.get()) != XML_READER_TYPE_ELEMENT)
            continue;
        const std::unique_ptr<xmlChar, xmlFreeFunc> name(
            xmlTextReaderGetAttribute(reader.get(), reinterpret_cast<const xmlChar*>("ModelName")), xmlFree);
        return name != nullptr ? reinterpret_cast<const char*>(name.get()) : std::string();
    }
    return {};
}

/// Calls `visit(page number, offset in page, offset in range, byte count)` for each page of the range.
template <typename Visit> void forEachPage(std::uint64_t address, std::size_t size, std::size_t pageSize, Visit visit)
{
    for (std::size_t done = 0; done < size;) {
        const std::uint64_t current = address + done; // wraps round at the end of the address space
        const auto offset = static_cast<std::size_t>(current % pageSize);
        const std::size_t bytes = std::min(size - done, pageSize - offset);
        visit(current / pageSize, offset, done, bytes);
        done += bytes;
    }
}

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
            return {Orvo::CAM_API_STS_NOT_IMPLEMENTED, "No image can have the size and pixel format in the registers"};
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

std::optional<DescriptionFile> readDescriptionFile(const std::string& path)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error || size > kMaxFileSize)
        return std::nullopt;
    std::ifstream in(path, std::ios::binary);
    DescriptionFile file{{std::istreambuf_iterator<char>(in), {}}, {}};
    if (!in)
        return std::nullopt;
    file.model = modelName(file.xml);
    if (file.model.empty())
        file.model = std::filesystem::path(path).stem().string();
    return file;
}

AccessResult SparseMemory::read(std::uint64_t address, void* buffer, std::uint32_t size)
{
    const std::lock_guard lock(m_mutex);
    auto* const out = static_cast<std::uint8_t*>(buffer);
    forEachPage(address, size, kPageSize, [&](std::uint64_t number, std::size_t offset, std::size_t at, std::size_t n) {
        const auto page = m_pages.find(number);
        if (page == m_pages.end()) {
            std::memset(out + at, 0, n);
        } else {
            std::memcpy(out + at, &page->second[offset], n);
        }
    });
    return AccessResult::Done;
}

AccessResult SparseMemory::write(std::uint64_t address, const void* buffer, std::uint32_t size)
{
    const std::lock_guard lock(m_mutex);
    const auto* const in = static_cast<const std::uint8_t*>(buffer);
    forEachPage(address, size, kPageSize, [&](std::uint64_t number, std::size_t offset, std::size_t at, std::size_t n) {
        std::memcpy(&m_pages[number][offset], in + at, n);
    });
    return AccessResult::Done;
}

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

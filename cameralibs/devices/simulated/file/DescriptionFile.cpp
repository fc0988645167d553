#include "cameralibs/devices/simulated/file/DescriptionFile.h"

#include <libxml/xmlreader.h>

#include <climits>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

namespace cameralibs::simulated {

namespace {

constexpr std::uintmax_t kMaxFileSize = 64U << 20;

// Reads the root element only, so that a file that is malformed further down still gets a name.
std::string modelName(const std::string& xml)
{
    constexpr int kQuiet = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
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

} // namespace cameralibs::simulated

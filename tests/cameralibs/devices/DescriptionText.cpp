#include "tests/cameralibs/devices/DescriptionText.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

DescriptionFile::DescriptionFile(const std::string& text)
    : m_path((std::filesystem::temp_directory_path() / "description-XXXXXX").string())
{
    const int file = ::mkstemp(m_path.data());
    EXPECT_GE(file, 0) << m_path;
    ::close(file);
    std::ofstream(m_path) << text;
}

DescriptionFile::~DescriptionFile()
{
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
}

std::string descriptionOf(const std::string& model, const std::string& features, const std::string& nodes)
{
    std::string list;
    std::istringstream words(features);
    for (std::string feature; words >> feature;)
        list += "<pFeature>" + feature + "</pFeature>";
    return R"(<?xml version="1.0" encoding="UTF-8"?><RegisterDescription ModelName=")" + model +
           R"(" VendorName="Somebody" SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0")"
           R"( MajorVersion="1" MinorVersion="0" SubMinorVersion="0" StandardNameSpace="None")"
           R"( xmlns="http://www.genicam.org/GenApi/Version_1_1">)"
           R"(<Category Name="Root">)" +
           list + R"(</Category><Port Name="Device"/>)" + nodes + "</RegisterDescription>";
}

std::string integerNode(const std::string& name, unsigned address, const std::string& range)
{
    return "<Integer Name=\"" + name + "\"><pValue>" + name + "Reg</pValue>" + range + "</Integer><IntReg Name=\"" +
           name + "Reg\"><Address>" + std::to_string(address) +
           "</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign>"
           "<Endianess>LittleEndian</Endianess></IntReg>";
}

#include "cameralibs/devices/simulated/SimulatedDescription.h"

#include "cameralibs/base/PixelFormat.h"
#include "cameralibs/devices/simulated/registers/CameraModel.h"
#include "cameralibs/devices/simulated/registers/RegisterTable.h"

#include <cstddef>
#include <cstdint>
#include <locale>
#include <sstream>
#include <string_view>

namespace cameralibs::simulated {

namespace {

void writeHeader(std::ostream& out, const CameraModel& model)
{
    out << R"(<?xml version="1.0" encoding="UTF-8"?>
<RegisterDescription ModelName=")"
        << model.name << R"(" VendorName="Simulated" ToolTip="Simulated camera" StandardNameSpace="None"
    SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0"
    MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
    ProductGuid="9A0C1D52-6C1B-4B0E-9E5B-51D2A1C90001" VersionGuid="9A0C1D52-6C1B-4B0E-9E5B-51D2A1C90002"
    xmlns="http://www.genicam.org/GenApi/Version_1_1">
)";
}

std::string_view nodeOf(RegisterKind kind)
{
    switch (kind) {
    case RegisterKind::Real:
        return "FloatReg";
    case RegisterKind::Text:
        return "StringReg";
    case RegisterKind::Bytes:
        return "Register";
    default:
        return "IntReg";
    }
}

std::string_view nameOf(RegisterAccess access)
{
    switch (access) {
    case RegisterAccess::ReadOnly:
        return "RO";
    case RegisterAccess::WriteOnly:
        return "WO";
    default:
        return "RW";
    }
}

void writeRegister(std::ostream& out, const RegisterEntry& entry)
{
    const std::string_view node = nodeOf(entry.kind);
    out << '<' << node << " Name=\"" << entry.name << "Reg\"><Address>" << entry.address << "</Address>";
    if (!entry.selector.empty())
        out << "<pIndex Offset=\"" << entry.length << "\">" << entry.selector << "Reg</pIndex>";
    out << "<Length>" << entry.length << "</Length><AccessMode>" << nameOf(entry.access)
        << "</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>";
    if (entry.kind == RegisterKind::Unsigned || entry.kind == RegisterKind::Signed)
        out << "<Sign>" << (entry.kind == RegisterKind::Signed ? "Signed" : "Unsigned") << "</Sign>";
    if (entry.kind != RegisterKind::Text && entry.kind != RegisterKind::Bytes)
        out << "<Endianess>LittleEndian</Endianess>";
    out << "</" << node << ">\n";
}

void writePixelFormatEntries(std::ostream& out, const CameraModel& model)
{
    for (const std::string_view name : model.formats) {
        if (name.empty())
            break;
        out << "<EnumEntry Name=\"" << name << "\"><ToolTip>" << name << "</ToolTip><Value>"
            << findPixelFormat(name)->value << "</Value></EnumEntry>\n";
    }
}

void writeLimit(std::ostream& out, const RegisterEntry& entry, double limit)
{
    if (entry.kind == RegisterKind::Real) {
        out << limit;
    } else {
        out << static_cast<std::int64_t>(limit);
    }
}

void writePlaceholder(std::ostream& out, std::string_view text, const CameraModel& model)
{
    if (text == "PixelFormatEntries") {
        writePixelFormatEntries(out, model);
        return;
    }
    const std::size_t point = text.find('.');
    const RegisterEntry& entry = registerNamed(text.substr(0, point));
    if (point == std::string_view::npos) {
        out << entry.address;
    } else {
        writeLimit(out, entry, text.substr(point) == ".min" ? entry.minimum : entry.maximum);
    }
}

void writeFragment(std::ostream& out, std::string_view fragment, const CameraModel& model)
{
    for (;;) {
        const std::size_t open = fragment.find('@');
        out << fragment.substr(0, open);
        if (open == std::string_view::npos)
            return;
        const std::size_t close = fragment.find('@', open + 1);
        writePlaceholder(out, fragment.substr(open + 1, close - open - 1), model);
        fragment.remove_prefix(close + 1);
    }
}

} // namespace

std::string describe(const CameraModel& model)
{
    std::ostringstream out;
    // Numbers must not depend on the program's locale, and 17 digits preserve a double exactly.
    out.imbue(std::locale::classic());
    out.precision(17);
    writeHeader(out, model);
    for (const std::string_view fragment : descriptionFragments())
        writeFragment(out, fragment, model);
    out << "<Group Comment=\"Registers\">\n";
    for (const RegisterEntry& entry : kRegisters)
        writeRegister(out, entry);
    out << "</Group>\n</RegisterDescription>\n";
    return out.str();
}

} // namespace cameralibs::simulated

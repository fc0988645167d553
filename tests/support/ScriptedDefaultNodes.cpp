#include "tests/support/ScriptedNodeMap.h"
#include "tests/support/ScriptedWorld.h"

#include <utility>

namespace scripted {

namespace {

NodeSpec common(const char* name, Orvo::NodeType type, const char* description)
{
    NodeSpec spec;
    spec.name = name;
    spec.type = type;
    spec.description = description;
    spec.toolTip = description;
    return spec;
}

NodeSpec integerNode(const char* name, const char* description, std::int64_t value, std::int64_t minimum,
                     std::int64_t maximum, std::int64_t increment)
{
    NodeSpec spec = common(name, Orvo::NODE_TYPE_INTEGER, description);
    spec.intValue = value;
    spec.intMin = minimum;
    spec.intMax = maximum;
    spec.intInc = increment;
    return spec;
}

NodeSpec floatNode(const char* name, const char* description, double value, double minimum, double maximum,
                   const char* unit)
{
    NodeSpec spec = common(name, Orvo::NODE_TYPE_FLOAT, description);
    spec.floatValue = value;
    spec.floatMin = minimum;
    spec.floatMax = maximum;
    spec.unit = unit;
    return spec;
}

NodeSpec stringNode(const char* name, const char* description, const char* value, Orvo::NodeAccessMode access)
{
    NodeSpec spec = common(name, Orvo::NODE_TYPE_STRING, description);
    spec.strValue = value;
    spec.access = access;
    return spec;
}

NodeSpec enumerationNode(const char* name, const char* description, std::int64_t value, std::vector<NodeSpec> entries)
{
    NodeSpec spec = common(name, Orvo::NODE_TYPE_ENUMERATION, description);
    spec.intValue = value;
    spec.entries = std::move(entries);
    return spec;
}

NodeSpec at(Orvo::TC_NODE_VISIBILITY visibility, NodeSpec spec)
{
    spec.visibility = visibility;
    return spec;
}

NodeSpec shownAs(Orvo::NodeRepresentation representation, NodeSpec spec)
{
    spec.representation = representation;
    return spec;
}

NodeSpec withAccess(Orvo::NodeAccessMode access, NodeSpec spec)
{
    spec.access = access;
    return spec;
}

} // namespace

NodeSpec category(std::string name, std::vector<std::string> features)
{
    NodeSpec spec;
    spec.name = std::move(name);
    spec.type = Orvo::NODE_TYPE_CATEGORY;
    spec.access = Orvo::NODE_ACCESS_MODE_RO;
    spec.features = std::move(features);
    return spec;
}

NodeSpec enumEntry(std::string name, std::int64_t value, Orvo::NodeAccessMode access)
{
    NodeSpec spec;
    spec.name = std::move(name);
    spec.type = Orvo::NODE_TYPE_ENUM_ENTRY;
    spec.access = access;
    spec.intValue = value;
    return spec;
}

void setNodes(std::vector<NodeSpec> nodes)
{
    const std::lock_guard lock(world().mutex);
    if (world().camera.handle == 0) {
        world().nodes = NodeMap(std::move(nodes));
    } else {
        world().nextNodes = NodeMap(std::move(nodes));
    }
}

std::vector<std::string> nodeNames()
{
    const std::lock_guard lock(world().mutex);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < world().nodes.size(); ++i) {
        if (world().nodes.at(i).spec.type != Orvo::NODE_TYPE_ENUM_ENTRY)
            names.push_back(world().nodes.at(i).fullName);
    }
    return names;
}

NodeSpec node(const std::string& name)
{
    const std::lock_guard lock(world().mutex);
    return world().nodes.get(name);
}

std::vector<NodeSpec> defaultNodes()
{
    using namespace Orvo;
    return {
        category("Root", {"DeviceControl", "ImageFormatControl", "AcquisitionControl", "AnalogControl"}),

        category("DeviceControl", {"DeviceVendorName", "DeviceModelName", "DeviceUserID", "DeviceTemperature",
                                   "DeviceRegistersStreamingStart", "GevCurrentIPAddress", "DeviceReset"}),
        stringNode("DeviceVendorName", "Name of the maker.", "Scripted", NODE_ACCESS_MODE_RO),
        stringNode("DeviceModelName", "Name of the model.", "SC-1", NODE_ACCESS_MODE_RO),
        stringNode("DeviceUserID", "A name that the user gives.", "", NODE_ACCESS_MODE_RW),
        withAccess(NODE_ACCESS_MODE_RO,
                   at(NODE_VISIBILITY_EXPERT,
                      floatNode("DeviceTemperature", "Temperature of the sensor.", 41.25, -40, 125, "C"))),
        withAccess(NODE_ACCESS_MODE_WO,
                   at(NODE_VISIBILITY_GURU,
                      integerNode("DeviceRegistersStreamingStart", "Opens a register session.", 0, 0, 255, 1))),
        shownAs(NODE_REPRESENTATION_IPV4_ADDRESS,
                withAccess(NODE_ACCESS_MODE_NA,
                           at(NODE_VISIBILITY_EXPERT, integerNode("GevCurrentIPAddress", "Address of the camera.",
                                                                  0xC0A80002, 0, 0xFFFFFFFF, 1)))),
        at(NODE_VISIBILITY_GURU, common("DeviceReset", NODE_TYPE_COMMAND, "Restarts the camera.")),

        category("ImageFormatControl", {"Width", "Height", "PixelFormat", "ReverseX", "TestPattern"}),
        integerNode("Width", "Width of the image in pixels.", 64, 16, 4096, 16),
        integerNode("Height", "Height of the image in pixels.", 48, 2, 4096, 2),
        enumerationNode("PixelFormat", "Format of the pixels.", kBayerRG8,
                        {enumEntry("Mono8", kMono8), enumEntry("BayerRG8", kBayerRG8), enumEntry("RGB8", 0x02180014),
                         enumEntry("Mono12p", 0x010C0047, NODE_ACCESS_MODE_NA)}),
        common("ReverseX", NODE_TYPE_BOOLEAN, "Mirrors the image."),
        at(NODE_VISIBILITY_INVISIBLE, shownAs(NODE_REPRESENTATION_HEX_NUMBER,
                                              integerNode("TestPattern", "A pattern for tests.", 0x2A, 0, 0xFF, 1))),

        category("AcquisitionControl", {"ExposureTime", "AcquisitionFrameRate", "TriggerMode", "TriggerSource",
                                        "TriggerSoftware", "AcquisitionFrameCount"}),
        floatNode("ExposureTime", "Exposure time.", 10000, 10, 1000000, "us"),
        floatNode("AcquisitionFrameRate", "Images per second.", 30, 0.5, 200, "Hz"),
        enumerationNode("TriggerMode", "Whether a trigger starts each image.", 0,
                        {enumEntry("Off", 0), enumEntry("On", 1)}),
        enumerationNode("TriggerSource", "What triggers.", 0,
                        {enumEntry("Line0", 0), enumEntry("Software", CAM_TRIGGER_SOURCE_SOFTWARE)}),
        common("TriggerSoftware", NODE_TYPE_COMMAND, "Triggers one image."),
        at(NODE_VISIBILITY_EXPERT, integerNode("AcquisitionFrameCount", "Images of a sequence.", 1, 1, INT64_MAX, 1)),

        category("AnalogControl", {"Gain", "BlackLevel"}),
        shownAs(NODE_REPRESENTATION_LINEAR, floatNode("Gain", "Amplification.", 0, 0, 24, "dB")),
        shownAs(NODE_REPRESENTATION_LINEAR, integerNode("BlackLevel", "Offset of black.", 8, 0, 255, 1)),
    };
}

} // namespace scripted

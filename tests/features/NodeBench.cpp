#include "tests/features/NodeBench.h"

#include <QtTest>

#include <array>
#include <utility>

NodeBench::NodeBench(std::vector<scripted::NodeSpec> nodes, int opeLogLevel)
    : m_first(nodes.front().name)
{
    scripted::reset();
    scripted::setNodes(std::move(nodes));
    std::uint32_t count = 0;
    Orvo::Sys_Initialize(65535);
    Orvo::Sys_GetNumOfCameras(&count);
    Orvo::Cam_Open(0, &m_camera, 0, 1, nullptr, 1);
    scripted::clearCalls();
    view.setOpeLogLevel(opeLogLevel);
    QObject::connect(&view, &FeatureView::OpeLogAppended, &view, [this](const QString& entry) { log << entry; });
    QObject::connect(&view, &FeatureView::checkSoftwareTriggerMode, &view, [this] { ++triggerChecks; });
}

Orvo::CAM_NODE_HANDLE NodeBench::handle(const std::string& name) const
{
    Orvo::CAM_NODE_HANDLE node = 0;
    if (Orvo::Nd_GetNode(m_camera, name.c_str(), &node) != Orvo::CAM_API_STS_SUCCESS)
        qFatal("no node %s", name.c_str());
    return node;
}

std::unique_ptr<GenAPINodeItem> NodeBench::item(const std::string& name)
{
    auto made = std::make_unique<GenAPINodeItem>(m_camera, handle(name.empty() ? m_first : name), 0, &view, nullptr);
    scripted::clearCalls();
    log.clear();
    return made;
}

QStringList NodeBench::calls()
{
    QStringList texts;
    for (const scripted::Call& call : scripted::calls()) {
        QStringList arguments;
        for (std::size_t i = 2; i < call.arguments.size(); ++i)
            arguments << QString::fromStdString(call.arguments[i]);
        texts << QString::fromStdString(call.operation) + '(' + arguments.join(QStringLiteral(", ")) + ')';
    }
    return texts;
}

scripted::NodeSpec nodeOf(Orvo::NodeType type, const std::string& name)
{
    scripted::NodeSpec spec;
    spec.name = name;
    spec.type = type;
    return spec;
}

scripted::NodeSpec integerNode(std::int64_t value, const std::string& name)
{
    scripted::NodeSpec spec = nodeOf(Orvo::NODE_TYPE_INTEGER, name);
    spec.intValue = value;
    return spec;
}

scripted::NodeSpec floatNode(double value, const std::string& name)
{
    scripted::NodeSpec spec = nodeOf(Orvo::NODE_TYPE_FLOAT, name);
    spec.floatValue = value;
    return spec;
}

scripted::NodeSpec stringNode(const std::string& value, const std::string& name)
{
    scripted::NodeSpec spec = nodeOf(Orvo::NODE_TYPE_STRING, name);
    spec.strValue = value;
    return spec;
}

scripted::NodeSpec enumNode(const std::vector<Orvo::NodeAccessMode>& entries, const std::string& name)
{
    static constexpr std::array kNames{"First", "Second", "Third", "Fourth", "Fifth"};
    scripted::NodeSpec spec = nodeOf(Orvo::NODE_TYPE_ENUMERATION, name);
    for (const Orvo::NodeAccessMode access : entries) {
        const std::size_t index = spec.entries.size();
        const auto number = static_cast<std::int64_t>(10 * (index + 1));
        spec.entries.push_back(scripted::enumEntry(kNames.at(index), number, access));
    }
    spec.intValue = 10;
    return spec;
}

scripted::NodeSpec exposure()
{
    scripted::NodeSpec spec = floatNode(12.3456, "ExposureTime");
    spec.unit = "us";
    spec.floatMin = 1.5;
    spec.floatMax = 1e6;
    spec.floatHasInc = 1;
    spec.floatInc = 0.5;
    return spec;
}

scripted::NodeSpec with(Orvo::NodeAccessMode access, scripted::NodeSpec spec)
{
    spec.access = access;
    return spec;
}

scripted::NodeSpec with(Orvo::NodeRepresentation representation, scripted::NodeSpec spec)
{
    spec.representation = representation;
    return spec;
}

#include "tests/attack/ScriptedSession.h"

#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"
#include "tests/support/Patience.h"

#include <QElapsedTimer>
#include <QTest>

#include <string>
#include <utility>

namespace {

using namespace Orvo;
using scripted::NodeSpec;

NodeSpec node(const char* name, NodeType type)
{
    NodeSpec spec;
    spec.name = name;
    spec.type = type;
    spec.description = std::string("Describes ") + name + '.';
    spec.toolTip = spec.description;
    return spec;
}

NodeSpec integer(const char* name, std::int64_t value, std::int64_t minimum, std::int64_t maximum)
{
    NodeSpec spec = node(name, NODE_TYPE_INTEGER);
    spec.intValue = value;
    spec.intMin = minimum;
    spec.intMax = maximum;
    return spec;
}

NodeSpec real(const char* name, double value, NodeRepresentation representation)
{
    NodeSpec spec = node(name, NODE_TYPE_FLOAT);
    spec.floatValue = value;
    spec.floatMin = 0;
    spec.floatMax = 1000;
    spec.unit = "us";
    spec.representation = representation;
    return spec;
}

NodeSpec enumeration(const char* name, std::vector<NodeSpec> entries)
{
    NodeSpec spec = node(name, NODE_TYPE_ENUMERATION);
    spec.intValue = entries.front().intValue;
    spec.entries = std::move(entries);
    return spec;
}

/// The value that the row of a node has to show.
QString shownValue(const NodeSpec& spec)
{
    QString text;
    switch (spec.type) {
    case NODE_TYPE_INTEGER:
        text = QString::number(spec.intValue);
        break;
    case NODE_TYPE_FLOAT:
        text = QString::number(spec.floatValue, 'f', static_cast<int>(spec.precision));
        break;
    case NODE_TYPE_BOOLEAN:
        text = spec.boolValue != 0 ? "true" : "false";
        break;
    case NODE_TYPE_STRING:
        text = QString::fromStdString(spec.strValue);
        break;
    case NODE_TYPE_ENUMERATION:
        for (const NodeSpec& entry : spec.entries) {
            if (entry.intValue == spec.intValue)
                text = QString::fromStdString(entry.name);
        }
        break;
    default:
        return {};
    }
    return spec.unit.empty() ? text : text + ' ' + QString::fromStdString(spec.unit);
}

} // namespace

std::vector<NodeSpec> smallCamera()
{
    return {
        scripted::category("Root", {"ImageFormatControl", "AcquisitionControl"}),
        scripted::category("ImageFormatControl", {"Width", "Height", "PixelFormat", "Mirror", "Label"}),
        integer("Width", 64, 16, 64),
        integer("Height", 48, 2, 48),
        enumeration("PixelFormat", {scripted::enumEntry("Mono8", scripted::kMono8),
                                    scripted::enumEntry("BayerRG8", scripted::kBayerRG8)}),
        node("Mirror", NODE_TYPE_BOOLEAN),
        node("Label", NODE_TYPE_STRING),
        scripted::category("AcquisitionControl",
                           {"ExposureTime", "Delay", "Count", "TriggerMode", "TriggerSource", "Reset"}),
        real("ExposureTime", 100, NODE_REPRESENTATION_LOGARITHMIC),
        real("Delay", 1, NODE_REPRESENTATION_PURE_NUMBER),
        integer("Count", 1, 1, 255),
        enumeration("TriggerMode", {scripted::enumEntry("Off", 0), scripted::enumEntry("On", 1)}),
        enumeration("TriggerSource",
                    {scripted::enumEntry("Line0", 0), scripted::enumEntry("Software", CAM_TRIGGER_SOURCE_SOFTWARE)}),
        node("Reset", NODE_TYPE_COMMAND),
    };
}

bool ScriptedSession::showImage(const std::function<bool()>& enough)
{
    bool shown = false;
    QObject receiver;
    QObject::connect(&driver().window(), &MainWindow::Update_Image, &receiver, [&shown] { shown = true; });
    QElapsedTimer patience;
    patience.start();
    while (!shown && !enough() && !patience.hasExpired(kPatienceMs)) {
        ++m_frame;
        if (!scripted::deliverImage(m_frame, static_cast<std::uint8_t>(m_frame)))
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
        QTest::qSleep(1);
    }
    return shown;
}

QStringList ScriptedSession::wrongValues()
{
    if (!features())
        return {};
    QStringList wrong;
    for (const GenAPINodeItem* const item : features()->items()) {
        const QString name = item->getNodeName();
        const QString value = shownValue(scripted::node(name.toStdString()));
        const QString shown = item->data(Qt::DisplayRole).toString();
        if (!value.isNull() && shown != value)
            wrong << QString("%1 shows %2 instead of %3").arg(name, shown, value);
    }
    return wrong;
}

// Every feature of every built-in camera has a description and can be read and written according to its access mode.

#include "tests/cameralibs/devices/BuiltInTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

using namespace Orvo;
using ::testing::AllOf;
using ::testing::Ge;
using ::testing::IsSupersetOf;
using ::testing::Le;

namespace {

struct Feature {
    std::string name;
    CAM_NODE_HANDLE node = 0;
    NodeType type = NODE_TYPE_UNKNOWN;
    NodeAccessMode access = NODE_ACCESS_MODE_UNDEFINED;
    int depth = 0;

    [[nodiscard]] bool isReadable() const { return access == NODE_ACCESS_MODE_RO || access == NODE_ACCESS_MODE_RW; }
};

class FeatureWalkTest : public BuiltInTest, public ::testing::WithParamInterface<std::uint32_t> {
protected:
    FeatureWalkTest() { collect("Root", 1); }

    [[nodiscard]] CAM_HANDLE camera() const { return m_camera.handle(); }

    [[nodiscard]] std::vector<Feature> ofType(NodeType type) const
    {
        std::vector<Feature> found;
        std::copy_if(m_features.begin(), m_features.end(), std::back_inserter(found),
                     [&](const Feature& feature) { return feature.type == type; });
        return found;
    }

    const SimulatedCamera& m_camera = switchedOn(GetParam());
    std::vector<Feature> m_features; ///< categories included, depth first

private:
    void collect(const std::string& category, int depth)
    {
        for (const std::string& name : m_camera.features(category)) {
            Feature feature{name, m_camera.node(name), NODE_TYPE_UNKNOWN, m_camera.access(name), depth};
            EXPECT_EQ(Nd_GetType(camera(), feature.node, &feature.type), CAM_API_STS_SUCCESS) << name;
            m_features.push_back(feature);
            if (feature.type == NODE_TYPE_CATEGORY)
                collect(name, depth + 1);
        }
    }
};

CAM_API_STATUS readText(CAM_HANDLE camera, const Feature& feature, TextOperation operation)
{
    std::uint32_t size = 0;
    return operation(camera, feature.node, nullptr, &size);
}

// The value of a feature, whatever its type.
CAM_API_STATUS readValue(CAM_HANDLE camera, const Feature& feature)
{
    std::int64_t integer = 0;
    double real = 0;
    bool flag = false;
    switch (feature.type) {
    case NODE_TYPE_INTEGER:
        return Nd_GetIntValue(camera, feature.node, &integer);
    case NODE_TYPE_FLOAT:
        return Nd_GetFloatValue(camera, feature.node, &real);
    case NODE_TYPE_BOOLEAN:
        return Nd_GetBoolValue(camera, feature.node, &flag);
    case NODE_TYPE_STRING:
        return readText(camera, feature, Nd_GetStrValue);
    case NODE_TYPE_ENUMERATION:
        return readText(camera, feature, Nd_GetEnumStrValue);
    default:
        return CAM_API_STS_SUCCESS;
    }
}

// Writes the value that the feature has.
CAM_API_STATUS writeBack(CAM_HANDLE camera, const Feature& feature)
{
    std::int64_t integer = 0;
    double real = 0;
    bool flag = false;
    switch (feature.type) {
    case NODE_TYPE_INTEGER:
        (void)Nd_GetIntValue(camera, feature.node, &integer);
        return Nd_SetIntValue(camera, feature.node, integer, true);
    case NODE_TYPE_FLOAT:
        (void)Nd_GetFloatValue(camera, feature.node, &real);
        return Nd_SetFloatValue(camera, feature.node, real, true);
    case NODE_TYPE_BOOLEAN:
        (void)Nd_GetBoolValue(camera, feature.node, &flag);
        return Nd_SetBoolValue(camera, feature.node, flag, true);
    case NODE_TYPE_STRING:
        return Nd_SetStrValue(camera, feature.node, wholeText(Nd_GetStrValue, camera, feature.node).c_str(), true);
    case NODE_TYPE_ENUMERATION:
        return Nd_SetEnumStrValue(camera, feature.node, wholeText(Nd_GetEnumStrValue, camera, feature.node).c_str(),
                                  true);
    default:
        return CAM_API_STS_SUCCESS;
    }
}

TEST_P(FeatureWalkTest, CameraHasManyFeatures)
{
    const auto categories =
        static_cast<std::size_t>(std::count_if(m_features.begin(), m_features.end(), [](const Feature& feature) {
            return feature.type == NODE_TYPE_CATEGORY;
        }));
    EXPECT_GE(m_features.size() - categories, 250U);
    EXPECT_GE(categories, 30U);
    std::set<std::string> names;
    for (const Feature& feature : m_features) {
        EXPECT_TRUE(names.insert(feature.name).second) << feature.name << " is in two categories";
        EXPECT_LE(feature.name.size(), 40U) << feature.name << " would push the other columns out of view";
    }
    EXPECT_THAT(names, IsSupersetOf({"DeviceVendorName", "Width", "Height", "OffsetX", "OffsetY", "PixelFormat",
                                     "BinningHorizontal", "ReverseX", "ExposureTime", "Gain", "BlackLevel",
                                     "AcquisitionFrameRate", "TestPattern", "TriggerMode", "TriggerSource",
                                     "TriggerSoftware", "DeviceTemperature", "UserSetLoad", "PayloadSize"}));
}

TEST_P(FeatureWalkTest, EveryKindOfFeatureExists)
{
    std::set<int> types;
    std::set<int> accesses;
    std::set<int> visibilities;
    std::set<int> representations;
    std::set<int> notations;
    std::set<std::int64_t> precisions;
    std::set<std::string> units;
    int depth = 0;
    for (const Feature& feature : m_features) {
        types.insert(feature.type);
        accesses.insert(feature.access);
        depth = std::max(depth, feature.depth);
        TC_NODE_VISIBILITY visibility{};
        ASSERT_EQ(Nd_GetVisibility(camera(), feature.node, &visibility), CAM_API_STS_SUCCESS) << feature.name;
        visibilities.insert(visibility);
        NodeRepresentation representation{};
        ASSERT_EQ(Nd_GetRepresentation(camera(), feature.node, &representation), CAM_API_STS_SUCCESS) << feature.name;
        representations.insert(representation);
        units.insert(wholeText(Nd_GetUnit, camera(), feature.node));
    }
    for (const Feature& feature : ofType(NODE_TYPE_FLOAT)) {
        FloatDisplayNotation notation{};
        ASSERT_EQ(Nd_GetFloatDisplayNotation(camera(), feature.node, &notation), CAM_API_STS_SUCCESS) << feature.name;
        notations.insert(notation);
        std::int64_t precision = 0;
        ASSERT_EQ(Nd_GetFloatDisplayPrecision(camera(), feature.node, &precision), CAM_API_STS_SUCCESS) << feature.name;
        precisions.insert(precision);
    }
    EXPECT_THAT(types, ::testing::ElementsAre(NODE_TYPE_INTEGER, NODE_TYPE_BOOLEAN, NODE_TYPE_COMMAND, NODE_TYPE_FLOAT,
                                              NODE_TYPE_STRING, NODE_TYPE_REGISTER, NODE_TYPE_CATEGORY,
                                              NODE_TYPE_ENUMERATION));
    EXPECT_THAT(accesses, ::testing::ElementsAre(NODE_ACCESS_MODE_NI, NODE_ACCESS_MODE_NA, NODE_ACCESS_MODE_WO,
                                                 NODE_ACCESS_MODE_RO, NODE_ACCESS_MODE_RW));
    EXPECT_THAT(visibilities, ::testing::ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(representations, ::testing::ElementsAre(0, 1, 2, 3, 4, 5, 6));
    EXPECT_THAT(notations, ::testing::ElementsAre(0, 1, 2));
    EXPECT_THAT(precisions, IsSupersetOf({0, 3, 6, 15}));
    EXPECT_THAT(units, IsSupersetOf({"px", "µs", "dB", "Hz", "°C", "mm", "V"}));
    EXPECT_GE(depth, 6);
}

TEST_P(FeatureWalkTest, EveryFeatureHasAToolTipAndADescription)
{
    for (const Feature& feature : m_features) {
        EXPECT_NE(wholeText(Nd_GetToolTip, camera(), feature.node), "") << feature.name;
        EXPECT_NE(wholeText(Nd_GetDescription, camera(), feature.node), "") << feature.name;
    }
}

TEST_P(FeatureWalkTest, ReadingFollowsTheAccessMode)
{
    const std::map<NodeAccessMode, CAM_API_STATUS> expected{
        {NODE_ACCESS_MODE_NI, CAM_API_STS_NOT_AVAILABLE}, {NODE_ACCESS_MODE_NA, CAM_API_STS_NOT_AVAILABLE},
        {NODE_ACCESS_MODE_WO, CAM_API_STS_NOT_READABLE},  {NODE_ACCESS_MODE_RO, CAM_API_STS_SUCCESS},
        {NODE_ACCESS_MODE_RW, CAM_API_STS_SUCCESS},
    };
    for (const Feature& feature : m_features) {
        if (feature.type == NODE_TYPE_COMMAND || feature.type == NODE_TYPE_REGISTER ||
            feature.type == NODE_TYPE_CATEGORY || feature.name == "EnumerationEmpty")
            continue;
        EXPECT_EQ(readValue(camera(), feature), expected.at(feature.access)) << feature.name;
    }
}

TEST_P(FeatureWalkTest, ReadableAndWritableFeaturesAcceptTheirOwnValue)
{
    int written = 0;
    for (const Feature& feature : m_features) {
        // An empty enumeration has no value.
        if (feature.access != NODE_ACCESS_MODE_RW || feature.name == "EnumerationEmpty")
            continue;
        ++written;
        EXPECT_EQ(writeBack(camera(), feature), CAM_API_STS_SUCCESS) << feature.name;
    }
    EXPECT_GE(written, 120);
}

TEST_P(FeatureWalkTest, ReadOnlyFeaturesCannotBeWritten)
{
    int refused = 0;
    for (const Feature& feature : m_features) {
        if (feature.access != NODE_ACCESS_MODE_RO || feature.type == NODE_TYPE_CATEGORY ||
            feature.type == NODE_TYPE_REGISTER)
            continue;
        ++refused;
        EXPECT_EQ(writeBack(camera(), feature), CAM_API_STS_NOT_WRITABLE) << feature.name;
    }
    EXPECT_GE(refused, 50);
}

TEST_P(FeatureWalkTest, NumbersAreWithinTheirRanges)
{
    for (const Feature& feature : ofType(NODE_TYPE_INTEGER)) {
        if (!feature.isReadable())
            continue;
        std::int64_t value = 0;
        std::int64_t least = 0;
        std::int64_t greatest = 0;
        std::int64_t step = 0;
        EXPECT_EQ(Nd_GetIntValue(camera(), feature.node, &value), CAM_API_STS_SUCCESS) << feature.name;
        EXPECT_EQ(Nd_GetIntMin(camera(), feature.node, &least), CAM_API_STS_SUCCESS) << feature.name;
        EXPECT_EQ(Nd_GetIntMax(camera(), feature.node, &greatest), CAM_API_STS_SUCCESS) << feature.name;
        EXPECT_EQ(Nd_GetIntInc(camera(), feature.node, &step), CAM_API_STS_SUCCESS) << feature.name;
        EXPECT_THAT(value, AllOf(Ge(least), Le(greatest))) << feature.name;
        EXPECT_GE(step, 1) << feature.name;
    }
    for (const Feature& feature : ofType(NODE_TYPE_FLOAT)) {
        if (!feature.isReadable() || feature.name == "FloatNotANumber" || feature.name == "FloatInfinite")
            continue;
        double value = 0;
        double least = 0;
        double greatest = 0;
        EXPECT_EQ(Nd_GetFloatValue(camera(), feature.node, &value), CAM_API_STS_SUCCESS) << feature.name;
        EXPECT_EQ(Nd_GetFloatMin(camera(), feature.node, &least), CAM_API_STS_SUCCESS) << feature.name;
        EXPECT_EQ(Nd_GetFloatMax(camera(), feature.node, &greatest), CAM_API_STS_SUCCESS) << feature.name;
        EXPECT_THAT(value, AllOf(Ge(least), Le(greatest))) << feature.name;
    }
}

TEST_P(FeatureWalkTest, FloatsAcceptTheirLimits)
{
    int written = 0;
    for (const Feature& feature : ofType(NODE_TYPE_FLOAT)) {
        if (feature.access != NODE_ACCESS_MODE_RW)
            continue;
        ++written;
        const double before = m_camera.real(feature.name);
        for (const auto limit : {Nd_GetFloatMin, Nd_GetFloatMax}) {
            double value = 0;
            EXPECT_EQ(limit(camera(), feature.node, &value), CAM_API_STS_SUCCESS) << feature.name;
            EXPECT_EQ(Nd_SetFloatValue(camera(), feature.node, value, true), CAM_API_STS_SUCCESS)
                << feature.name << " " << value;
            EXPECT_EQ(m_camera.real(feature.name), value) << feature.name;
        }
        EXPECT_EQ(Nd_SetFloatValue(camera(), feature.node, before, true), CAM_API_STS_SUCCESS) << feature.name;
    }
    EXPECT_GE(written, 10);
}

TEST_P(FeatureWalkTest, EntriesCanBeChosenAccordingToTheirAccessMode)
{
    int refused = 0;
    for (const Feature& feature : ofType(NODE_TYPE_ENUMERATION)) {
        if (feature.access != NODE_ACCESS_MODE_RW || feature.name == "EnumerationEmpty")
            continue;
        const std::string before = m_camera.choice(feature.name);
        const std::vector<std::string> entries = m_camera.entries(feature.name);
        for (std::uint32_t i = 0; i < entries.size(); ++i) {
            CAM_NODE_HANDLE entry = 0;
            NodeAccessMode access = NODE_ACCESS_MODE_UNDEFINED;
            EXPECT_EQ(Nd_GetEnumEntryByIndex(camera(), feature.node, i, &entry), CAM_API_STS_SUCCESS);
            EXPECT_EQ(Nd_GetAccessMode(camera(), entry, &access), CAM_API_STS_SUCCESS);
            const bool can = access == NODE_ACCESS_MODE_RO;
            refused += can ? 0 : 1;
            EXPECT_EQ(Nd_SetEnumStrValue(camera(), feature.node, entries[i].c_str(), true),
                      can ? CAM_API_STS_SUCCESS : CAM_API_STS_INVALID_PARAMETER)
                << feature.name << " " << entries[i];
        }
        EXPECT_EQ(Nd_SetEnumStrValue(camera(), feature.node, before.c_str(), true), CAM_API_STS_SUCCESS)
            << feature.name;
    }
    EXPECT_GE(refused, 1);
}

TEST_P(FeatureWalkTest, ValuesOfEnumerationsAreAmongTheirEntries)
{
    for (const Feature& feature : ofType(NODE_TYPE_ENUMERATION)) {
        const std::vector<std::string> entries = m_camera.entries(feature.name);
        EXPECT_EQ(entries.empty(), feature.name == "EnumerationEmpty") << feature.name;
        if (feature.isReadable() && !entries.empty()) {
            EXPECT_THAT(entries, ::testing::Contains(m_camera.choice(feature.name))) << feature.name;
        }
    }
}

TEST_P(FeatureWalkTest, ColourFeaturesAreImplementedByColourCamerasOnly)
{
    const bool colour = GetParam() != kMono;
    for (const char* const name : {"BalanceRatioSelector", "BalanceRatio", "BalanceWhiteAuto"})
        EXPECT_EQ(m_camera.access(name), colour ? NODE_ACCESS_MODE_RW : NODE_ACCESS_MODE_NI) << name;
    EXPECT_EQ(m_camera.choice("PixelColorFilter"), colour ? "BayerRG" : "None");
}

INSTANTIATE_TEST_SUITE_P(BuiltIn, FeatureWalkTest, ::testing::Values(kMono, kColour, kLarge));

} // namespace

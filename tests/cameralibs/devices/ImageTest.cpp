// The effects of features on images.

#include "camera/OrvoCamUtl.h"
#include "tests/cameralibs/api/StreamRecorder.h"
#include "tests/cameralibs/devices/BuiltInTest.h"
#include "tests/cameralibs/devices/FrameNumberReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

using namespace Orvo;

namespace {

// A bright step of the grey wedge, where only the ball moves. In 1/1200 of the height.
struct Place {
    std::uint32_t x;
    std::uint32_t y;
    int level; ///< of 255, with the default exposure
};
constexpr Place kGrey{80 + 55 * 5 + 27, 695, 5 * 255 / 11};

class MonoImageTest : public MonoTest {
protected:
    // The level of the wedge. Skips images in which the ball covers it.
    [[nodiscard]] double grey() const
    {
        const Picture picture = takeClear();
        return picture.at(scaled(kGrey.x), scaled(kGrey.y));
    }

    // An image in which the ball is elsewhere, so that the area around the place is uniform.
    [[nodiscard]] Picture takeClear() const
    {
        StreamRecorder stream(m_camera.handle());
        for (int attempt = 0; attempt < 600; ++attempt) {
            const auto pictures = stream.take(1);
            if (pictures.empty())
                break;
            const Picture& picture = pictures.front();
            const int level = picture.at(scaled(kGrey.x), scaled(kGrey.y));
            if (level == picture.at(scaled(kGrey.x) - 15, scaled(kGrey.y)) &&
                level == picture.at(scaled(kGrey.x) + 15, scaled(kGrey.y) + 8))
                return picture;
        }
        ADD_FAILURE() << "the ball does not move away";
        return {};
    }

    static std::uint32_t scaled(std::uint32_t units) { return units * 1024 / 1200; }
};

// The share of pixels of `a` that differ from the pixels of `b` at the index that `place` returns.
double difference(const Picture& a, const Picture& b,
                  const std::function<std::size_t(std::uint32_t, std::uint32_t)>& place)
{
    std::size_t differing = 0;
    for (std::uint32_t y = 0; y < a.height; ++y) {
        for (std::uint32_t x = 0; x < a.width; ++x)
            differing += a.at(x, y) != b.bytes[place(x, y)] ? 1 : 0;
    }
    return static_cast<double>(differing) / static_cast<double>(a.bytes.size());
}

// Only the ball and the frame number may differ. Their old and new places together are less than this share of an
// image.
constexpr double kMovingShare = 0.07;

TEST_F(MonoImageTest, BrightnessFollowsExposureTimeAndGain)
{
    EXPECT_NEAR(grey(), kGrey.level, 1);
    m_camera.setReal("ExposureTime", 5000);
    EXPECT_NEAR(grey(), kGrey.level / 2.0, 1.5);
    m_camera.setReal("Gain", 6);
    EXPECT_NEAR(grey(), kGrey.level / 2.0 * std::pow(10, 6 / 20.0), 2);
    m_camera.setReal("ExposureTime", 16000);
    m_camera.setReal("Gain", 24);
    EXPECT_EQ(grey(), 255);
}

TEST_F(MonoImageTest, BlackLevelIsAdded)
{
    m_camera.setReal("BlackLevel", 32);
    EXPECT_NEAR(grey(), kGrey.level + 32, 1);
    m_camera.setReal("ExposureTime", 10);
    EXPECT_NEAR(grey(), 32, 1);
}

TEST_F(MonoImageTest, GammaBendsTheCurve)
{
    m_camera.setReal("Gamma", 0.5);
    EXPECT_NEAR(grey(), std::sqrt(kGrey.level / 255.0) * 255, 1.5);
}

TEST_F(MonoImageTest, LookUpTableMapsLevels)
{
    for (int level = 0; level < 256; ++level) {
        m_camera.setInteger("LUTIndex", level);
        EXPECT_EQ(m_camera.integer("LUTValue"), level);
        m_camera.setInteger("LUTValue", 255 - level);
    }
    EXPECT_NEAR(grey(), kGrey.level, 1);
    m_camera.setFlag("LUTEnable", true);
    EXPECT_NEAR(grey(), 255 - kGrey.level, 1.5);
}

TEST_F(MonoImageTest, OffsetMovesTheRegion)
{
    const Picture whole = takePicture(m_camera.handle());
    m_camera.setInteger("Width", 800);
    m_camera.setInteger("Height", 600);
    EXPECT_EQ(m_camera.greatest("OffsetX"), 480);
    EXPECT_EQ(m_camera.greatest("OffsetY"), 424);
    m_camera.setInteger("OffsetX", 400);
    m_camera.setInteger("OffsetY", 202);
    EXPECT_EQ(m_camera.greatest("Width"), 880);
    EXPECT_EQ(m_camera.integer("PayloadSize"), 800 * 600);
    const Picture part = takePicture(m_camera.handle());
    ASSERT_EQ(part.bytes.size(), 800U * 600U);

    // Places on the rings, where every pixel differs from its neighbours. The ball cannot cover both.
    const auto isAlike = [&](std::uint32_t left, std::uint32_t top, std::uint32_t dx, std::uint32_t dy) {
        for (std::uint32_t y = top; y < top + 40; ++y) {
            for (std::uint32_t x = left; x < left + 40; ++x) {
                if (part.at(x, y) != whole.at(x + dx, y + dy))
                    return false;
            }
        }
        return true;
    };
    const auto isAlikeSomewhere = [&](std::uint32_t dx, std::uint32_t dy) {
        return isAlike(380, 60, dx, dy) || isAlike(600, 60, dx, dy) || isAlike(560, 220, dx, dy);
    };
    EXPECT_TRUE(isAlikeSomewhere(400, 202));
    EXPECT_FALSE(isAlikeSomewhere(399, 202));
    EXPECT_FALSE(isAlikeSomewhere(400, 203));
}

TEST_F(MonoImageTest, ReverseMirrors)
{
    const Picture straight = takePicture(m_camera.handle());
    const auto mirrored = [&](bool x, bool y) {
        return [&, x, y](std::uint32_t column, std::uint32_t row) {
            return static_cast<std::size_t>(y ? straight.height - 1 - row : row) * straight.width +
                   (x ? straight.width - 1 - column : column);
        };
    };
    for (const auto& [x, y] : {std::pair{true, false}, {false, true}, {true, true}}) {
        m_camera.setFlag("ReverseX", x);
        m_camera.setFlag("ReverseY", y);
        const Picture reversed = takePicture(m_camera.handle());
        EXPECT_LT(difference(reversed, straight, mirrored(x, y)), kMovingShare);
        EXPECT_GT(difference(reversed, straight, mirrored(false, false)), 3 * kMovingShare);
        EXPECT_EQ(readFrameNumber(reversed), reversed.number) << "The number stays readable";
    }
}

TEST_F(MonoImageTest, BinningAveragesPixels)
{
    const Picture whole = takePicture(m_camera.handle());
    m_camera.setInteger("Width", 640);
    m_camera.setInteger("OffsetX", 64);
    m_camera.setInteger("BinningHorizontal", 2);
    m_camera.setInteger("BinningVertical", 4);
    EXPECT_EQ(m_camera.integer("WidthMax"), 640);
    EXPECT_EQ(m_camera.integer("HeightMax"), 256);
    EXPECT_EQ(m_camera.integer("Width"), 320);
    EXPECT_EQ(m_camera.integer("OffsetX"), 32);
    EXPECT_EQ(m_camera.integer("Height"), 256);
    m_camera.setInteger("OffsetX", 0);
    m_camera.setInteger("Width", 640);
    const Picture joined = takePicture(m_camera.handle());
    ASSERT_EQ(joined.bytes.size(), 640U * 256U);
    std::size_t off = 0;
    for (std::uint32_t y = 0; y < joined.height; ++y) {
        for (std::uint32_t x = 0; x < joined.width; ++x) {
            int sum = 0;
            for (std::uint32_t i = 0; i < 8; ++i)
                sum += whole.at(2 * x + i % 2, 4 * y + i / 2);
            off += std::abs(joined.at(x, y) - sum / 8) > 1 ? 1 : 0;
        }
    }
    EXPECT_LT(static_cast<double>(off), kMovingShare * 640 * 256);
    m_camera.setInteger("BinningHorizontal", 3);
    m_camera.setInteger("BinningVertical", 1);
    EXPECT_EQ(m_camera.integer("WidthMax"), 424);
    EXPECT_EQ(m_camera.integer("Height"), 1024);
}

TEST_F(MonoImageTest, BinningModeSumIsBrighter)
{
    m_camera.setReal("ExposureTime", 2500);
    m_camera.setInteger("BinningHorizontal", 2);
    m_camera.setInteger("BinningVertical", 2);
    const auto level = [&] {
        const Picture picture = takePicture(m_camera.handle());
        const auto x = scaled(kGrey.x) / 2;
        const auto y = scaled(kGrey.y) / 2;
        std::vector<int> levels; // at several places: the brightest one is not covered by the dark ball
        for (const std::uint32_t row : {0U, 10U, 20U})
            levels.push_back(picture.at(x, y - 10 + row));
        return *std::max_element(levels.begin(), levels.end());
    };
    const int average = level();
    m_camera.choose("BinningHorizontalMode", "Sum");
    m_camera.choose("BinningVerticalMode", "Sum");
    EXPECT_NEAR(level(), 4 * average, 6);
}

TEST_F(MonoImageTest, FrameNumberIsReadable)
{
    m_camera.setInteger("Width", 128);
    m_camera.setInteger("Height", 64);
    m_camera.setReal("ExposureTime", 1000);
    m_camera.setReal("AcquisitionFrameRate", 500);
    const auto pictures = StreamRecorder(m_camera.handle()).take(250);
    ASSERT_EQ(pictures.size(), 250U);
    for (const Picture& picture : pictures)
        ASSERT_EQ(readFrameNumber(picture), picture.number);
}

TEST_F(MonoImageTest, SceneMoves)
{
    StreamRecorder stream(m_camera.handle());
    const auto pictures = stream.take(30);
    ASSERT_EQ(pictures.size(), 30U);
    std::size_t moved = 0;
    for (std::size_t i = std::size_t{200} * pictures.front().width; i < pictures.front().bytes.size(); ++i)
        moved += pictures.front().bytes[i] != pictures.back().bytes[i] ? 1 : 0;
    EXPECT_GT(moved, 1000U);
}

class FormatTest : public BuiltInTest, public ::testing::WithParamInterface<std::uint32_t> {};

TEST_P(FormatTest, ImagesOfEveryPixelFormatAreComplete)
{
    const std::map<std::string, std::pair<std::uint32_t, double>> bytesPerPixel{
        {"Mono8", {0x01080001, 1}},        {"Mono10", {0x01100003, 2}},    {"Mono12", {0x01100005, 2}},
        {"Mono10p", {0x010A0046, 1.25}},   {"Mono12p", {0x010C0047, 1.5}}, {"Mono16", {0x01100007, 2}},
        {"BayerRG8", {0x01080009, 1}},     {"BayerRG10", {0x0110000D, 2}}, {"BayerRG12", {0x01100011, 2}},
        {"BayerRG12p", {0x010C0059, 1.5}}, {"RGB8", {0x02180014, 3}},      {"YUV422_8", {0x02100032, 2}},
    };
    const std::vector<std::string> expected[] = {
        {"Mono8", "Mono10", "Mono12", "Mono10p", "Mono12p", "Mono16"},
        {"BayerRG8", "BayerRG10", "BayerRG12", "BayerRG12p", "RGB8", "YUV422_8"},
        {"BayerRG8", "BayerRG12p"},
    };
    const SimulatedCamera& camera = switchedOn(GetParam());
    EXPECT_EQ(camera.entries("PixelFormat"), expected[GetParam()]);
    for (const std::string& format : camera.entries("PixelFormat")) {
        SCOPED_TRACE(format);
        const auto [value, bytes] = bytesPerPixel.at(format);
        camera.choose("PixelFormat", format);
        std::int64_t number = 0;
        EXPECT_EQ(Nd_GetEnumIntValue(camera.handle(), camera.node("PixelFormat"), &number), CAM_API_STS_SUCCESS);
        EXPECT_EQ(number, value);
        const Picture picture = takePicture(camera.handle());
        const double pixels = static_cast<double>(picture.width) * picture.height;
        EXPECT_EQ(picture.bytes.size(), static_cast<std::size_t>(pixels * bytes));
        EXPECT_EQ(camera.integer("PayloadSize"), static_cast<std::int64_t>(picture.bytes.size()));
        EXPECT_EQ(readFrameNumber(picture), picture.number);
    }
}

INSTANTIATE_TEST_SUITE_P(BuiltIn, FormatTest, ::testing::Values(kMono, kColour, kLarge));

class SensorTest : public BuiltInTest {};

TEST_F(SensorTest, SizesOfTheBuiltInCameras)
{
    const std::pair<std::int64_t, std::int64_t> sizes[] = {{1280, 1024}, {1920, 1200}, {5472, 3648}};
    for (std::uint32_t index = 0; index < kBuiltIn; ++index) {
        const SimulatedCamera& camera = switchedOn(index);
        EXPECT_EQ(camera.integer("Width"), sizes[index].first);
        EXPECT_EQ(camera.integer("Height"), sizes[index].second);
        EXPECT_EQ(camera.integer("SensorWidth"), sizes[index].first);
    }
}

class ColourImageTest : public BuiltInTest {};

// The colours of the chart are the same in every format, and the balance changes them.
TEST_F(ColourImageTest, ChartHasItsColoursInEveryFormat)
{
    const SimulatedCamera& camera = switchedOn(kColour);
    const std::uint32_t blue = 80 + 110 * 4 + 55; // the fifth of six patches, 110 wide each
    const auto patch = [&](std::uint32_t x) {
        // If the orange ball covers the patch, take another image.
        StreamRecorder stream(camera.handle());
        for (int attempt = 0; attempt < 600; ++attempt) {
            const auto pictures = stream.take(1);
            if (pictures.empty())
                break;
            const std::vector<std::uint32_t> pixels = convert(pictures.front(), 260);
            const std::uint32_t pixel = pixels[235U * 1920 + x];
            if (pixel == pixels[215U * 1920 + x - 20] && pixel == pixels[255U * 1920 + x + 20])
                return pixel;
        }
        ADD_FAILURE() << "the ball does not move away";
        return 0U;
    };
    const auto expectColor = [](std::uint32_t pixel, int red, int green, int blueLevel) {
        EXPECT_NEAR(static_cast<int>(pixel >> 16 & 0xFF), red, 3);
        EXPECT_NEAR(static_cast<int>(pixel >> 8 & 0xFF), green, 3);
        EXPECT_NEAR(static_cast<int>(pixel & 0xFF), blueLevel, 3);
    };
    for (const std::string& format : camera.entries("PixelFormat")) {
        SCOPED_TRACE(format);
        camera.choose("PixelFormat", format);
        expectColor(patch(blue), 40, 90, 190);
    }
    camera.choose("BalanceRatioSelector", "Blue");
    camera.setReal("BalanceRatio", 0.5);
    camera.choose("BalanceRatioSelector", "Red");
    camera.setReal("BalanceRatio", 2);
    expectColor(patch(blue), 80, 90, 95);
    camera.choose("BalanceWhiteAuto", "Once");
    expectColor(patch(blue), 40, 90, 190);
}

} // namespace

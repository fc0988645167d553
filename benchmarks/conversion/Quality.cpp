#include "benchmarks/conversion/Quality.h"

#include "benchmarks/Report.h"
#include "camera/OrvoCamUtl.h"

#include <opencv2/imgproc.hpp>

#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 1024;
constexpr int kHeight = 768;
constexpr std::uint32_t kBayerRg8 = 0x01080009;

cv::Mat bgrOf(const cv::Mat& gray)
{
    cv::Mat bgr;
    cv::cvtColor(gray, bgr, cv::COLOR_GRAY2BGR);
    return bgr;
}

// Rings around the middle that become finer outwards, down to four pixels per period at the left and right edges.
cv::Mat zonePlate()
{
    cv::Mat gray(kHeight, kWidth, CV_8UC1);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const double r2 = std::pow(x - kWidth / 2.0, 2) + std::pow(y - kHeight / 2.0, 2);
            gray.at<std::uint8_t>(y, x) = static_cast<std::uint8_t>(127.5 + 127 * std::cos(r2 * CV_PI / (2 * kWidth)));
        }
    }
    return bgrOf(gray);
}

// Drawn at four times the size, so that edges are between pixels.
cv::Mat drawnLarge(const std::function<void(cv::Mat&)>& draw)
{
    constexpr int kTimes = 4;
    cv::Mat large(kTimes * kHeight, kTimes * kWidth, CV_8UC3, cv::Scalar(235, 235, 235));
    draw(large);
    cv::Mat result;
    cv::resize(large, result, {kWidth, kHeight}, 0, 0, cv::INTER_AREA);
    return result;
}

cv::Mat slantedEdges()
{
    return drawnLarge([](cv::Mat& image) {
        for (int y = 200; y < image.rows; y += 700) {
            for (int x = 200; x < image.cols; x += 700) {
                cv::RotatedRect bar({static_cast<float>(x), static_cast<float>(y)}, {400, 400},
                                    static_cast<float>(5 + (x + y) % 40));
                std::array<cv::Point2f, 4> corners;
                bar.points(corners.data());
                const std::vector<cv::Point> polygon(corners.begin(), corners.end());
                cv::fillConvexPoly(image, polygon, cv::Scalar(40 + x % 30, 40, 40 + y % 30));
            }
        }
    });
}

cv::Mat text()
{
    return drawnLarge([](cv::Mat& image) {
        for (int y = 60; y < image.rows; y += 90) {
            cv::putText(image,
                        "The quick brown fox jumps over the lazy dog 0123456789 sphinx of black quartz, judge my vow",
                        {20 + y % 37, y}, cv::FONT_HERSHEY_SIMPLEX, 2.2, cv::Scalar(30, 30, 30), 5, cv::LINE_AA);
        }
    });
}

// Noise at all scales, stronger at larger ones, with less variation in colour than in brightness.
cv::Mat texture()
{
    cv::RNG random(7);
    cv::Mat sum(kHeight, kWidth, CV_32FC3, cv::Scalar(128, 128, 128));
    for (int size = 2; size <= 256; size *= 2) {
        cv::Mat gray(kHeight / size + 2, kWidth / size + 2, CV_32FC1);
        cv::Mat tint(gray.size(), CV_32FC3);
        random.fill(gray, cv::RNG::NORMAL, 0, 3.5 * std::sqrt(size));
        random.fill(tint, cv::RNG::NORMAL, 0, 0.6 * std::sqrt(size));
        cv::Mat layer;
        cv::cvtColor(gray, layer, cv::COLOR_GRAY2BGR);
        layer += tint;
        cv::resize(layer, layer, sum.size(), 0, 0, cv::INTER_CUBIC);
        sum += layer;
    }
    cv::Mat result;
    sum.convertTo(result, CV_8U);
    return result;
}

cv::Mat saturatedShapes()
{
    return drawnLarge([](cv::Mat& image) {
        cv::RNG random(11);
        for (int i = 0; i < 900; ++i) {
            const auto any = [&random] { return random.uniform(0, 2) * 255; };
            const cv::Scalar colour(any(), any(), any());
            const cv::Point middle(random.uniform(0, image.cols), random.uniform(0, image.rows));
            const cv::Size axes(random.uniform(20, 160), random.uniform(20, 160));
            cv::ellipse(image, middle, axes, random.uniform(0, 180), 0, 360, colour, cv::FILLED);
        }
    });
}

// Red and green in even rows, green and blue in odd ones.
cv::Mat mosaicOf(const cv::Mat& truth)
{
    cv::Mat mosaic(truth.size(), CV_8UC1);
    for (int y = 0; y < truth.rows; ++y) {
        for (int x = 0; x < truth.cols; ++x) {
            const int channel = y % 2 == 0 ? (x % 2 == 0 ? 2 : 1) : (x % 2 == 0 ? 1 : 0);
            mosaic.at<std::uint8_t>(y, x) = truth.at<cv::Vec3b>(y, x)[channel];
        }
    }
    return mosaic;
}

cv::Mat ours(const cv::Mat& mosaic)
{
    cv::Mat bgra(mosaic.size(), CV_8UC4);
    Orvo::ConvImage(0, kBayerRg8, 1, bgra.data, mosaic.data, kWidth, kHeight);
    cv::Mat bgr;
    cv::cvtColor(bgra, bgr, cv::COLOR_BGRA2BGR);
    return bgr;
}

cv::Mat theirs(const cv::Mat& mosaic, int code)
{
    cv::Mat bgr;
    cv::demosaicing(mosaic, bgr, code);
    return bgr;
}

// Without the edges, which every method treats differently.
double decibels(const cv::Mat& truth, const cv::Mat& result)
{
    const cv::Rect inner(4, 4, kWidth - 8, kHeight - 8);
    return cv::PSNR(truth(inner), result(inner));
}

struct Scene {
    const char* name;
    cv::Mat (*draw)();
};

constexpr Scene kScenes[] = {
    {"zone plate", zonePlate}, {"slanted edges", slantedEdges},       {"text", text},
    {"texture", texture},      {"saturated shapes", saturatedShapes},
};

} // namespace

void printQuality()
{
    for (const Scene& scene : kScenes) {
        const cv::Mat truth = scene.draw();
        const cv::Mat mosaic = mosaicOf(truth);
        const auto print = [&](const char* method, const cv::Mat& result) {
            report::print(std::string("PSNR of a Bayer image, ") + scene.name + ": " + method,
                          report::single(decibels(truth, result)), "dB");
        };
        print("ours", ours(mosaic));
        print("OpenCV, bilinear", theirs(mosaic, cv::COLOR_BayerBG2BGR));
        print("OpenCV, edge-aware", theirs(mosaic, cv::COLOR_BayerBG2BGR_EA));
    }
}

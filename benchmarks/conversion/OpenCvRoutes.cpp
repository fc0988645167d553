#include "benchmarks/conversion/OpenCvRoutes.h"

#include <opencv2/imgproc.hpp>

#include <array>
#include <utility>

namespace {

using Convert = decltype(OpenCvRoute::convert);

cv::Mat& bytesOf(int width, int height, int type = CV_8UC1)
{
    static cv::Mat bytes;
    bytes.create(height, width, type);
    return bytes;
}

Convert colour(int type, int code)
{
    return [=](std::uint8_t* source, int width, int height, cv::Mat& bgra) {
        cv::cvtColor(cv::Mat(height, width, type, source), bgra, code);
    };
}

// 16-bit words of `bits` bits: reduced to 8, then converted. The numbers of the types give the channels.
Convert wordsThenColour(int channels, unsigned bits, int code)
{
    return [=](std::uint8_t* source, int width, int height, cv::Mat& bgra) {
        cv::Mat& bytes = bytesOf(width, height, CV_8UC(channels));
        cv::Mat(height, width, CV_16UC(channels), source).convertTo(bytes, CV_8U, 1.0 / (1U << (bits - 8)));
        cv::cvtColor(bytes, bgra, code);
    };
}

template <unsigned Bits> void unpackBits(const std::uint8_t* source, std::size_t samples, std::uint8_t* out)
{
    for (std::size_t i = 0; i < samples; ++i) {
        const std::size_t bit = i * Bits + Bits - 8;
        const unsigned word = source[bit / 8] | unsigned{source[(bit + 7) / 8]} << 8;
        out[i] = static_cast<std::uint8_t>(word >> (bit % 8));
    }
}

void unpackPairs(const std::uint8_t* source, std::size_t samples, std::uint8_t* out)
{
    for (std::size_t i = 0; i < samples; ++i) {
        out[i] = source[i / 2 * 3 + i % 2 * 2];
    }
}

Convert unpackThenColour(void (*unpack)(const std::uint8_t*, std::size_t, std::uint8_t*), int code)
{
    return [=](std::uint8_t* source, int width, int height, cv::Mat& bgra) {
        cv::Mat& bytes = bytesOf(width, height);
        unpack(source, bytes.total(), bytes.data);
        cv::cvtColor(bytes, bgra, code);
    };
}

void mergePlanes(std::uint8_t* source, int width, int height, cv::Mat& bgra)
{
    static cv::Mat opaque;
    if (opaque.size() != cv::Size(width, height)) {
        opaque = cv::Mat(height, width, CV_8UC1, cv::Scalar(255));
    }
    const auto plane = [=](int number) {
        return cv::Mat(height, width, CV_8UC1, source + std::ptrdiff_t{number} * width * height);
    };
    const std::array<cv::Mat, 4> planes{plane(2), plane(1), plane(0), opaque};
    cv::merge(planes.data(), planes.size(), bgra);
}

void yuv444(std::uint8_t* source, int width, int height, cv::Mat& bgra)
{
    cv::Mat& bgr = bytesOf(width, height, CV_8UC3);
    cv::cvtColor(cv::Mat(height, width, CV_8UC3, source), bgr, cv::COLOR_YUV2BGR);
    cv::cvtColor(bgr, bgra, cv::COLOR_BGR2BGRA);
}

void nv12(std::uint8_t* source, int width, int height, cv::Mat& bgra)
{
    cv::cvtColor(cv::Mat(height + height / 2, width, CV_8UC1, source), bgra, cv::COLOR_YUV2BGRA_NV12);
}

} // namespace

// OpenCV names a mosaic by the pixels two rows and columns further: its "BayerBG" is the RG of the PFNC.
std::vector<OpenCvRoute> openCvRoutes()
{
    return {
        {"Mono8", 0x01080001, 8, colour(CV_8UC1, cv::COLOR_GRAY2BGRA)},
        {"Mono10", 0x01100003, 16, wordsThenColour(1, 10, cv::COLOR_GRAY2BGRA)},
        {"Mono12", 0x01100005, 16, wordsThenColour(1, 12, cv::COLOR_GRAY2BGRA)},
        {"Mono16", 0x01100007, 16, wordsThenColour(1, 16, cv::COLOR_GRAY2BGRA)},
        {"Mono10p", 0x010A0046, 10, unpackThenColour(unpackBits<10>, cv::COLOR_GRAY2BGRA)},
        {"Mono12p", 0x010C0047, 12, unpackThenColour(unpackBits<12>, cv::COLOR_GRAY2BGRA)},
        {"Mono12Packed", 0x010C0006, 12, unpackThenColour(unpackPairs, cv::COLOR_GRAY2BGRA)},
        {"BayerRG8", 0x01080009, 8, colour(CV_8UC1, cv::COLOR_BayerBG2BGRA)},
        {"BayerGR8", 0x01080008, 8, colour(CV_8UC1, cv::COLOR_BayerGB2BGRA)},
        {"BayerGB8", 0x0108000A, 8, colour(CV_8UC1, cv::COLOR_BayerGR2BGRA)},
        {"BayerBG8", 0x0108000B, 8, colour(CV_8UC1, cv::COLOR_BayerRG2BGRA)},
        {"BayerRG10", 0x0110000D, 16, wordsThenColour(1, 10, cv::COLOR_BayerBG2BGRA)},
        {"BayerRG12", 0x01100011, 16, wordsThenColour(1, 12, cv::COLOR_BayerBG2BGRA)},
        {"BayerRG16", 0x0110002F, 16, wordsThenColour(1, 16, cv::COLOR_BayerBG2BGRA)},
        {"BayerRG10p", 0x010A0058, 10, unpackThenColour(unpackBits<10>, cv::COLOR_BayerBG2BGRA)},
        {"BayerRG12p", 0x010C0059, 12, unpackThenColour(unpackBits<12>, cv::COLOR_BayerBG2BGRA)},
        {"BayerRG12Packed", 0x010C002B, 12, unpackThenColour(unpackPairs, cv::COLOR_BayerBG2BGRA)},
        {"RGB8", 0x02180014, 24, colour(CV_8UC3, cv::COLOR_RGB2BGRA)},
        {"BGR8", 0x02180015, 24, colour(CV_8UC3, cv::COLOR_BGR2BGRA)},
        {"RGBa8", 0x02200016, 32, colour(CV_8UC4, cv::COLOR_RGBA2BGRA)},
        {"RGB12", 0x0230001A, 48, wordsThenColour(3, 12, cv::COLOR_RGB2BGRA)},
        {"RGB8_Planar", 0x02180021, 24, mergePlanes},
        {"YCbCr8", 0x0218005B, 24, yuv444},
        {"YUV422_8", 0x02100032, 16, colour(CV_8UC2, cv::COLOR_YUV2BGRA_YUYV)},
        {"YUV422_8_UYVY", 0x0210001F, 16, colour(CV_8UC2, cv::COLOR_YUV2BGRA_UYVY)},
        {"YCbCr420_8_YY_CbCr_Semiplanar", 0x020C0112, 12, nv12},
    };
}

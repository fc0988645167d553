#include "benchmarks/conversion/Peers.h"

#include <libyuv.h>
#include <opencv2/imgproc.hpp>

#include <algorithm>

namespace {

using Convert = std::function<void(const Work&)>;

cv::Mat imageOf(const Work& work, int type = CV_8UC1)
{
    return {work.height, work.width, type, work.source};
}

cv::Mat resultOf(const Work& work)
{
    return {work.height, work.width, CV_8UC4, work.bgra};
}

// The buffer between two passes.
cv::Mat& bytesOf(const Work& work, int type = CV_8UC1)
{
    static cv::Mat bytes;
    bytes.create(work.height, work.width, type);
    return bytes;
}

Convert colour(int type, int code)
{
    return [=](const Work& work) { cv::cvtColor(imageOf(work, type), resultOf(work), code); };
}

// OpenCV first converts to B, G, R.
Convert edgeAware(int code)
{
    return [=](const Work& work) {
        cv::Mat& bgr = bytesOf(work, CV_8UC3);
        cv::demosaicing(imageOf(work), bgr, code);
        cv::cvtColor(bgr, resultOf(work), cv::COLOR_BGR2BGRA);
    };
}

// Words with `bits` bits are reduced to 8, then converted.
Convert wordsThenColour(unsigned bits, int code)
{
    return [=](const Work& work) {
        cv::Mat& bytes = bytesOf(work);
        imageOf(work, CV_16UC1).convertTo(bytes, CV_8U, 1.0 / (1U << (bits - 8)));
        cv::cvtColor(bytes, resultOf(work), code);
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

// Four samples at a time, with constant shifts. The measured sizes are multiples of four.
void unpackGroups10(const std::uint8_t* source, std::size_t samples, std::uint8_t* out)
{
    for (std::size_t i = 0; i + 4 <= samples; i += 4, source += 5) {
        out[i] = static_cast<std::uint8_t>(source[0] >> 2 | source[1] << 6);
        out[i + 1] = static_cast<std::uint8_t>(source[1] >> 4 | source[2] << 4);
        out[i + 2] = static_cast<std::uint8_t>(source[2] >> 6 | source[3] << 2);
        out[i + 3] = source[4];
    }
}

void unpackGroups12(const std::uint8_t* source, std::size_t samples, std::uint8_t* out)
{
    for (std::size_t i = 0; i + 2 <= samples; i += 2, source += 3) {
        out[i] = static_cast<std::uint8_t>(source[0] >> 4 | source[1] << 4);
        out[i + 1] = source[2];
    }
}

void unpackGroupsOfPairs(const std::uint8_t* source, std::size_t samples, std::uint8_t* out)
{
    for (std::size_t i = 0; i + 2 <= samples; i += 2, source += 3) {
        out[i] = source[0];
        out[i + 1] = source[2];
    }
}

using Unpack = void (*)(const std::uint8_t*, std::size_t, std::uint8_t*);

Convert unpackThenColour(Unpack unpack, int code)
{
    return [=](const Work& work) {
        cv::Mat& bytes = bytesOf(work);
        unpack(work.source, bytes.total(), bytes.data);
        cv::cvtColor(bytes, resultOf(work), code);
    };
}

using ToArgb = int (*)(const std::uint8_t*, int, std::uint8_t*, int, int, int);

Convert yuvLibrary(ToArgb convert, int bytesPerPixel)
{
    return [=](const Work& work) {
        convert(work.source, bytesPerPixel * work.width, work.bgra, 4 * work.width, work.width, work.height);
    };
}

Convert yuvLibraryWords(unsigned bits)
{
    return [=](const Work& work) {
        cv::Mat& bytes = bytesOf(work);
        libyuv::Convert16To8Plane(reinterpret_cast<const std::uint16_t*>(work.source), work.width, bytes.data,
                                  work.width, 1 << (24 - bits), work.width, work.height);
        libyuv::J400ToARGB(bytes.data, work.width, work.bgra, 4 * work.width, work.width, work.height);
    };
}

// No library has a function for groups of six bytes.
void plain411(const Work& work)
{
    const std::uint8_t* group = work.source;
    std::uint8_t* bgra = work.bgra;
    for (int i = 0; i < work.width * work.height / 4; ++i, group += 6) {
        const int cb = group[2] - 128;
        const int cr = group[5] - 128;
        for (const int place : {0, 1, 3, 4}) {
            const int y = group[place] * 1024 + 512;
            bgra[0] = static_cast<std::uint8_t>(std::clamp((y + 1815 * cb) >> 10, 0, 255));
            bgra[1] = static_cast<std::uint8_t>(std::clamp((y - 352 * cb - 731 * cr) >> 10, 0, 255));
            bgra[2] = static_cast<std::uint8_t>(std::clamp((y + 1436 * cr) >> 10, 0, 255));
            bgra[3] = 255;
            bgra += 4;
        }
    }
}

Contest mono(const std::string& format, std::uint32_t pfnc, unsigned bits)
{
    constexpr Goals kOpenCv{2, 1.4, 1.4, 1.4};
    constexpr Goals kLibyuv{1.3, 1.3, 1.3, 1.3};
    return {format,
            pfnc,
            16,
            0.85,
            0.85,
            {{"OpenCV, two passes", wordsThenColour(bits, cv::COLOR_GRAY2BGRA), kOpenCv, kOpenCv},
             {"libyuv, two passes", yuvLibraryWords(bits), kLibyuv, kLibyuv}}};
}

Contest packedMono(const std::string& format, std::uint32_t pfnc, std::size_t bitsPerPixel, Unpack plain, Unpack groups)
{
    constexpr Goals kGoals{6, 4, 4, 4};
    return {format,
            pfnc,
            bitsPerPixel,
            0.8,
            0.8,
            {{"plain unpack + OpenCV", unpackThenColour(plain, cv::COLOR_GRAY2BGRA), kGoals, kGoals},
             {"unpack by groups + OpenCV", unpackThenColour(groups, cv::COLOR_GRAY2BGRA), {}, {}}}};
}

Contest bayer(const std::string& format, std::uint32_t pfnc, int bilinear, int aware)
{
    return {format,
            pfnc,
            8,
            0.85,
            1.1,
            {{"OpenCV, bilinear", colour(CV_8UC1, bilinear), {1.7, 1.4, 1.5, 1.1}, {1.2, 1.05, 1.1, 0.97}},
             {"OpenCV, edge-aware", edgeAware(aware), {3, 3, 3, 3}, {2.4, 2.4, 2.4, 2.4}}}};
}

Contest bayerWords(const std::string& format, std::uint32_t pfnc, unsigned bits)
{
    return {format,
            pfnc,
            16,
            0.95,
            1.2,
            {{"OpenCV, two passes",
              wordsThenColour(bits, cv::COLOR_BayerBG2BGRA),
              {2.0, 1.8, 1.9, 1.4},
              {1.5, 1.4, 1.4, 1.2}}}};
}

Contest packedBayer(const std::string& format, std::uint32_t pfnc, std::size_t bitsPerPixel, Unpack plain,
                    Unpack groups)
{
    constexpr int kCode = cv::COLOR_BayerBG2BGRA;
    return {format,
            pfnc,
            bitsPerPixel,
            1.05,
            1.3,
            {{"plain unpack + OpenCV", unpackThenColour(plain, kCode), {4, 3.5, 3.5, 3.5}, {3, 2.8, 2.8, 2.8}},
             {"unpack by groups + OpenCV", unpackThenColour(groups, kCode), {}, {}}}};
}

Contest rgb(const std::string& format, std::uint32_t pfnc, int code, ToArgb argb)
{
    constexpr Goals kOpenCv{0, 0.95, 0.95, 0.95};
    constexpr Goals kLibyuv{0.8, 0.95, 0.95, 0.95};
    return {format,
            pfnc,
            24,
            0.95,
            0.95,
            {{"OpenCV", colour(CV_8UC3, code), kOpenCv, kOpenCv}, {"libyuv", yuvLibrary(argb, 3), kLibyuv, kLibyuv}}};
}

Contest yuv422(const std::string& format, std::uint32_t pfnc, int code, ToArgb argb)
{
    constexpr Goals kOpenCv{0, 3, 3, 3};
    constexpr Goals kLibyuv{0.9, 0.95, 0.95, 0.95};
    return {format,
            pfnc,
            16,
            0.85,
            0.85,
            {{"OpenCV", colour(CV_8UC2, code), kOpenCv, kOpenCv}, {"libyuv", yuvLibrary(argb, 2), kLibyuv, kLibyuv}}};
}

} // namespace

// OpenCV names a mosaic after the pixels of the second row and column: its "BayerBG" is the RG of the PFNC.
std::vector<Contest> contests()
{
    constexpr Goals kParity{0.95, 0.95, 0.95, 0.95};
    constexpr Goals kPlain411Goals{11, 9, 9, 9};
    return {
        {"Mono8",
         0x01080001,
         8,
         0.75,
         0.75,
         {{"OpenCV", colour(CV_8UC1, cv::COLOR_GRAY2BGRA), kParity, kParity},
          {"libyuv", yuvLibrary(libyuv::J400ToARGB, 1), kParity, kParity}}},
        mono("Mono10", 0x01100003, 10),
        mono("Mono12", 0x01100005, 12),
        mono("Mono16", 0x01100007, 16),
        packedMono("Mono10p", 0x010A0046, 10, unpackBits<10>, unpackGroups10),
        packedMono("Mono12p", 0x010C0047, 12, unpackBits<12>, unpackGroups12),
        packedMono("Mono12Packed", 0x010C0006, 12, unpackPairs, unpackGroupsOfPairs),
        bayer("BayerRG8", 0x01080009, cv::COLOR_BayerBG2BGRA, cv::COLOR_BayerBG2BGR_EA),
        bayer("BayerGR8", 0x01080008, cv::COLOR_BayerGB2BGRA, cv::COLOR_BayerGB2BGR_EA),
        bayer("BayerGB8", 0x0108000A, cv::COLOR_BayerGR2BGRA, cv::COLOR_BayerGR2BGR_EA),
        bayer("BayerBG8", 0x0108000B, cv::COLOR_BayerRG2BGRA, cv::COLOR_BayerRG2BGR_EA),
        bayerWords("BayerRG10", 0x0110000D, 10),
        bayerWords("BayerRG12", 0x01100011, 12),
        bayerWords("BayerRG16", 0x0110002F, 16),
        packedBayer("BayerRG10p", 0x010A0058, 10, unpackBits<10>, unpackGroups10),
        packedBayer("BayerRG12p", 0x010C0059, 12, unpackBits<12>, unpackGroups12),
        rgb("RGB8", 0x02180014, cv::COLOR_RGB2BGRA, libyuv::RAWToARGB),
        rgb("BGR8", 0x02180015, cv::COLOR_BGR2BGRA, libyuv::RGB24ToARGB),
        yuv422("YUV422_8", 0x02100032, cv::COLOR_YUV2BGRA_YUYV, libyuv::YUY2ToARGB),
        yuv422("YUV422_8_UYVY", 0x0210001F, cv::COLOR_YUV2BGRA_UYVY, libyuv::UYVYToARGB),
        yuv422("YCbCr422_8", 0x0210003B, cv::COLOR_YUV2BGRA_YUYV, libyuv::YUY2ToARGB),
        {"YCbCr411_8", 0x020C005A, 12, 0.85, 0.85, {{"plain loop", plain411, kPlain411Goals, kPlain411Goals}}},
    };
}

#include "cameralibs/base/PixelFormat.h"

#include <algorithm>
#include <array>
#include <limits>

namespace cameralibs {

namespace {

constexpr auto Mono = PixelFamily::Mono;
constexpr auto Bayer = PixelFamily::Bayer;
constexpr auto Rgb = PixelFamily::Rgb;
constexpr auto YCbCr = PixelFamily::YCbCr;
constexpr auto YCbCr601 = PixelFamily::YCbCr601;
constexpr auto YCbCr709 = PixelFamily::YCbCr709;

constexpr auto Unpacked = SamplePacking::Unpacked;
constexpr auto Planar = SamplePacking::Planar;
constexpr auto Semiplanar = SamplePacking::Semiplanar;
constexpr auto Bits = SamplePacking::Bits;
constexpr auto Bits32 = SamplePacking::Bits32;
constexpr auto Pairs = SamplePacking::Pairs;

// Names and values from the PFNC published by the EMVA; those with "Packed" from GigE Vision. Not included: samples of
// fewer than 8 or more than 16 bits, signed samples, BT.2020, formats with only one or two colours (R8, BiColorRGBG8
// and the like), the packed RGB of early GigE Vision (RGB10V1Packed, RGB12V1Packed), and data other than images (3D,
// confidence, raw data).
constexpr std::array<PixelFormat, 141> kPixelFormats{{
    {"Mono8", 0x01080001, Mono, 8, Unpacked, "Y"},
    {"Mono10", 0x01100003, Mono, 10, Unpacked, "Y"},
    {"Mono12", 0x01100005, Mono, 12, Unpacked, "Y"},
    {"Mono14", 0x01100025, Mono, 14, Unpacked, "Y"},
    {"Mono16", 0x01100007, Mono, 16, Unpacked, "Y"},
    {"Mono10p", 0x010A0046, Mono, 10, Bits, "Y"},
    {"Mono12p", 0x010C0047, Mono, 12, Bits, "Y"},
    {"Mono14p", 0x010E0104, Mono, 14, Bits, "Y"},
    {"Mono10Packed", 0x010C0004, Mono, 10, Pairs, "Y"},
    {"Mono12Packed", 0x010C0006, Mono, 12, Pairs, "Y"},

    {"BayerGR8", 0x01080008, Bayer, 8, Unpacked, "GR"},
    {"BayerGR10", 0x0110000C, Bayer, 10, Unpacked, "GR"},
    {"BayerGR12", 0x01100010, Bayer, 12, Unpacked, "GR"},
    {"BayerGR14", 0x01100109, Bayer, 14, Unpacked, "GR"},
    {"BayerGR16", 0x0110002E, Bayer, 16, Unpacked, "GR"},
    {"BayerGR10p", 0x010A0056, Bayer, 10, Bits, "GR"},
    {"BayerGR12p", 0x010C0057, Bayer, 12, Bits, "GR"},
    {"BayerGR14p", 0x010E0105, Bayer, 14, Bits, "GR"},
    {"BayerGR10Packed", 0x010C0026, Bayer, 10, Pairs, "GR"},
    {"BayerGR12Packed", 0x010C002A, Bayer, 12, Pairs, "GR"},

    {"BayerRG8", 0x01080009, Bayer, 8, Unpacked, "RG"},
    {"BayerRG10", 0x0110000D, Bayer, 10, Unpacked, "RG"},
    {"BayerRG12", 0x01100011, Bayer, 12, Unpacked, "RG"},
    {"BayerRG14", 0x0110010A, Bayer, 14, Unpacked, "RG"},
    {"BayerRG16", 0x0110002F, Bayer, 16, Unpacked, "RG"},
    {"BayerRG10p", 0x010A0058, Bayer, 10, Bits, "RG"},
    {"BayerRG12p", 0x010C0059, Bayer, 12, Bits, "RG"},
    {"BayerRG14p", 0x010E0106, Bayer, 14, Bits, "RG"},
    {"BayerRG10Packed", 0x010C0027, Bayer, 10, Pairs, "RG"},
    {"BayerRG12Packed", 0x010C002B, Bayer, 12, Pairs, "RG"},

    {"BayerGB8", 0x0108000A, Bayer, 8, Unpacked, "GB"},
    {"BayerGB10", 0x0110000E, Bayer, 10, Unpacked, "GB"},
    {"BayerGB12", 0x01100012, Bayer, 12, Unpacked, "GB"},
    {"BayerGB14", 0x0110010B, Bayer, 14, Unpacked, "GB"},
    {"BayerGB16", 0x01100030, Bayer, 16, Unpacked, "GB"},
    {"BayerGB10p", 0x010A0054, Bayer, 10, Bits, "GB"},
    {"BayerGB12p", 0x010C0055, Bayer, 12, Bits, "GB"},
    {"BayerGB14p", 0x010E0107, Bayer, 14, Bits, "GB"},
    {"BayerGB10Packed", 0x010C0028, Bayer, 10, Pairs, "GB"},
    {"BayerGB12Packed", 0x010C002C, Bayer, 12, Pairs, "GB"},

    {"BayerBG8", 0x0108000B, Bayer, 8, Unpacked, "BG"},
    {"BayerBG10", 0x0110000F, Bayer, 10, Unpacked, "BG"},
    {"BayerBG12", 0x01100013, Bayer, 12, Unpacked, "BG"},
    {"BayerBG14", 0x0110010C, Bayer, 14, Unpacked, "BG"},
    {"BayerBG16", 0x01100031, Bayer, 16, Unpacked, "BG"},
    {"BayerBG10p", 0x010A0052, Bayer, 10, Bits, "BG"},
    {"BayerBG12p", 0x010C0053, Bayer, 12, Bits, "BG"},
    {"BayerBG14p", 0x010E0108, Bayer, 14, Bits, "BG"},
    {"BayerBG10Packed", 0x010C0029, Bayer, 10, Pairs, "BG"},
    {"BayerBG12Packed", 0x010C002D, Bayer, 12, Pairs, "BG"},

    {"RGB8", 0x02180014, Rgb, 8, Unpacked, "RGB"},
    {"RGB10", 0x02300018, Rgb, 10, Unpacked, "RGB"},
    {"RGB12", 0x0230001A, Rgb, 12, Unpacked, "RGB"},
    {"RGB14", 0x0230005E, Rgb, 14, Unpacked, "RGB"},
    {"RGB16", 0x02300033, Rgb, 16, Unpacked, "RGB"},
    {"RGB10p", 0x021E005C, Rgb, 10, Bits, "RGB"},
    {"RGB12p", 0x0224005D, Rgb, 12, Bits, "RGB"},
    {"RGB10p32", 0x0220001D, Rgb, 10, Bits32, "RGB"},

    {"BGR8", 0x02180015, Rgb, 8, Unpacked, "BGR"},
    {"BGR10", 0x02300019, Rgb, 10, Unpacked, "BGR"},
    {"BGR12", 0x0230001B, Rgb, 12, Unpacked, "BGR"},
    {"BGR14", 0x0230004A, Rgb, 14, Unpacked, "BGR"},
    {"BGR16", 0x0230004B, Rgb, 16, Unpacked, "BGR"},
    {"BGR10p", 0x021E0048, Rgb, 10, Bits, "BGR"},
    {"BGR12p", 0x02240049, Rgb, 12, Bits, "BGR"},

    {"RGBa8", 0x02200016, Rgb, 8, Unpacked, "RGBa"},
    {"RGBa10", 0x0240005F, Rgb, 10, Unpacked, "RGBa"},
    {"RGBa12", 0x02400061, Rgb, 12, Unpacked, "RGBa"},
    {"RGBa14", 0x02400063, Rgb, 14, Unpacked, "RGBa"},
    {"RGBa16", 0x02400064, Rgb, 16, Unpacked, "RGBa"},
    {"RGBa10p", 0x02280060, Rgb, 10, Bits, "RGBa"},
    {"RGBa12p", 0x02300062, Rgb, 12, Bits, "RGBa"},

    {"BGRa8", 0x02200017, Rgb, 8, Unpacked, "BGRa"},
    {"BGRa10", 0x0240004C, Rgb, 10, Unpacked, "BGRa"},
    {"BGRa12", 0x0240004E, Rgb, 12, Unpacked, "BGRa"},
    {"BGRa14", 0x02400050, Rgb, 14, Unpacked, "BGRa"},
    {"BGRa16", 0x02400051, Rgb, 16, Unpacked, "BGRa"},
    {"BGRa10p", 0x0228004D, Rgb, 10, Bits, "BGRa"},
    {"BGRa12p", 0x0230004F, Rgb, 12, Bits, "BGRa"},

    {"RGB8_Planar", 0x02180021, Rgb, 8, Planar, "RGB"},
    {"RGB10_Planar", 0x02300022, Rgb, 10, Planar, "RGB"},
    {"RGB12_Planar", 0x02300023, Rgb, 12, Planar, "RGB"},
    {"RGB16_Planar", 0x02300024, Rgb, 16, Planar, "RGB"},

    {"YUV8_UYV", 0x02180020, YCbCr, 8, Unpacked, "UYV"},
    {"YUV422_8", 0x02100032, YCbCr, 8, Unpacked, "YUYV"},
    {"YUV422_8_UYVY", 0x0210001F, YCbCr, 8, Unpacked, "UYVY"},
    {"YUV411_8_UYYVYY", 0x020C001E, YCbCr, 8, Unpacked, "UYYVYY"},

    {"YCbCr8", 0x0218005B, YCbCr, 8, Unpacked, "YUV"},
    {"YCbCr8_CbYCr", 0x0218003A, YCbCr, 8, Unpacked, "UYV"},
    {"YCbCr10_CbYCr", 0x02300083, YCbCr, 10, Unpacked, "UYV"},
    {"YCbCr10p_CbYCr", 0x021E0084, YCbCr, 10, Bits, "UYV"},
    {"YCbCr12_CbYCr", 0x02300085, YCbCr, 12, Unpacked, "UYV"},
    {"YCbCr12p_CbYCr", 0x02240086, YCbCr, 12, Bits, "UYV"},
    {"YCbCr422_8", 0x0210003B, YCbCr, 8, Unpacked, "YUYV"},
    {"YCbCr422_8_CbYCrY", 0x02100043, YCbCr, 8, Unpacked, "UYVY"},
    {"YCbCr422_10", 0x02200065, YCbCr, 10, Unpacked, "YUYV"},
    {"YCbCr422_10_CbYCrY", 0x02200099, YCbCr, 10, Unpacked, "UYVY"},
    {"YCbCr422_10p", 0x02140087, YCbCr, 10, Bits, "YUYV"},
    {"YCbCr422_10p_CbYCrY", 0x0214009A, YCbCr, 10, Bits, "UYVY"},
    {"YCbCr422_12", 0x02200066, YCbCr, 12, Unpacked, "YUYV"},
    {"YCbCr422_12_CbYCrY", 0x0220009B, YCbCr, 12, Unpacked, "UYVY"},
    {"YCbCr422_12p", 0x02180088, YCbCr, 12, Bits, "YUYV"},
    {"YCbCr422_12p_CbYCrY", 0x0218009C, YCbCr, 12, Bits, "UYVY"},
    {"YCbCr411_8", 0x020C005A, YCbCr, 8, Unpacked, "YYUYYV"},
    {"YCbCr411_8_CbYYCrYY", 0x020C003C, YCbCr, 8, Unpacked, "UYYVYY"},

    {"YCbCr601_8_CbYCr", 0x0218003D, YCbCr601, 8, Unpacked, "UYV"},
    {"YCbCr601_10_CbYCr", 0x02300089, YCbCr601, 10, Unpacked, "UYV"},
    {"YCbCr601_10p_CbYCr", 0x021E008A, YCbCr601, 10, Bits, "UYV"},
    {"YCbCr601_12_CbYCr", 0x0230008B, YCbCr601, 12, Unpacked, "UYV"},
    {"YCbCr601_12p_CbYCr", 0x0224008C, YCbCr601, 12, Bits, "UYV"},
    {"YCbCr601_422_8", 0x0210003E, YCbCr601, 8, Unpacked, "YUYV"},
    {"YCbCr601_422_8_CbYCrY", 0x02100044, YCbCr601, 8, Unpacked, "UYVY"},
    {"YCbCr601_422_10", 0x0220008D, YCbCr601, 10, Unpacked, "YUYV"},
    {"YCbCr601_422_10_CbYCrY", 0x0220009D, YCbCr601, 10, Unpacked, "UYVY"},
    {"YCbCr601_422_10p", 0x0214008E, YCbCr601, 10, Bits, "YUYV"},
    {"YCbCr601_422_10p_CbYCrY", 0x0214009E, YCbCr601, 10, Bits, "UYVY"},
    {"YCbCr601_422_12", 0x0220008F, YCbCr601, 12, Unpacked, "YUYV"},
    {"YCbCr601_422_12_CbYCrY", 0x0220009F, YCbCr601, 12, Unpacked, "UYVY"},
    {"YCbCr601_422_12p", 0x02180090, YCbCr601, 12, Bits, "YUYV"},
    {"YCbCr601_422_12p_CbYCrY", 0x021800A0, YCbCr601, 12, Bits, "UYVY"},
    {"YCbCr601_411_8_CbYYCrYY", 0x020C003F, YCbCr601, 8, Unpacked, "UYYVYY"},

    {"YCbCr709_8_CbYCr", 0x02180040, YCbCr709, 8, Unpacked, "UYV"},
    {"YCbCr709_10_CbYCr", 0x02300091, YCbCr709, 10, Unpacked, "UYV"},
    {"YCbCr709_10p_CbYCr", 0x021E0092, YCbCr709, 10, Bits, "UYV"},
    {"YCbCr709_12_CbYCr", 0x02300093, YCbCr709, 12, Unpacked, "UYV"},
    {"YCbCr709_12p_CbYCr", 0x02240094, YCbCr709, 12, Bits, "UYV"},
    {"YCbCr709_422_8", 0x02100041, YCbCr709, 8, Unpacked, "YUYV"},
    {"YCbCr709_422_8_CbYCrY", 0x02100045, YCbCr709, 8, Unpacked, "UYVY"},
    {"YCbCr709_422_10", 0x02200095, YCbCr709, 10, Unpacked, "YUYV"},
    {"YCbCr709_422_10_CbYCrY", 0x022000A1, YCbCr709, 10, Unpacked, "UYVY"},
    {"YCbCr709_422_10p", 0x02140096, YCbCr709, 10, Bits, "YUYV"},
    {"YCbCr709_422_10p_CbYCrY", 0x021400A2, YCbCr709, 10, Bits, "UYVY"},
    {"YCbCr709_422_12", 0x02200097, YCbCr709, 12, Unpacked, "YUYV"},
    {"YCbCr709_422_12_CbYCrY", 0x022000A3, YCbCr709, 12, Unpacked, "UYVY"},
    {"YCbCr709_422_12p", 0x02180098, YCbCr709, 12, Bits, "YUYV"},
    {"YCbCr709_422_12p_CbYCrY", 0x021800A4, YCbCr709, 12, Bits, "UYVY"},
    {"YCbCr709_411_8_CbYYCrYY", 0x020C0042, YCbCr709, 8, Unpacked, "UYYVYY"},

    {"YCbCr422_8_YY_CbCr_Semiplanar", 0x02100113, YCbCr, 8, Semiplanar, "YYUV"},
    {"YCbCr422_8_YY_CrCb_Semiplanar", 0x02100115, YCbCr, 8, Semiplanar, "YYVU"},
    {"YCbCr420_8_YY_CbCr_Semiplanar", 0x020C0112, YCbCr, 8, Semiplanar, "YYYYUV"},
    {"YCbCr420_8_YY_CrCb_Semiplanar", 0x020C0114, YCbCr, 8, Semiplanar, "YYYYVU"},
}};

constexpr unsigned bitsInLayout(const PixelFormat& format)
{
    const auto samples = static_cast<unsigned>(format.order.size());
    const unsigned pixels = pixelsPerGroup(format);
    switch (format.packing) {
    case SamplePacking::Unpacked:
    case SamplePacking::Planar:
    case SamplePacking::Semiplanar:
        return samples * (format.bits > 8 ? 16 : 8) / pixels;
    case SamplePacking::Bits:
        return samples * format.bits / pixels;
    case SamplePacking::Bits32:
        return 32;
    case SamplePacking::Pairs:
        return samples * 12 / pixels;
    }
    return 0;
}

// A PFNC value encodes the bits per pixel; they must agree with the layout in the table.
constexpr bool valuesAgreeWithLayouts()
{
    for (const PixelFormat& format : kPixelFormats) {
        if (bitsPerPixel(format.value) != bitsInLayout(format))
            return false;
    }
    return true;
}
static_assert(valuesAgreeWithLayouts());

constexpr bool valuesAreUnique()
{
    for (std::size_t i = 0; i < kPixelFormats.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (kPixelFormats[i].value == kPixelFormats[j].value || kPixelFormats[i].name == kPixelFormats[j].name)
                return false;
        }
    }
    return true;
}
static_assert(valuesAreUnique());

template <typename Key> const PixelFormat* find(Key key, Key PixelFormat::*field)
{
    const auto* const found = std::find_if(kPixelFormats.begin(), kPixelFormats.end(),
                                           [&](const PixelFormat& format) { return format.*field == key; });
    return found == kPixelFormats.end() ? nullptr : found;
}

constexpr std::uint64_t kSaturated = std::numeric_limits<std::uint64_t>::max();

std::uint64_t saturatedProduct(std::uint64_t a, std::uint64_t b)
{
    return b != 0 && a > kSaturated / b ? kSaturated : a * b;
}

// Size of a continuous run of samples, rounded up to whole bytes.
std::uint64_t bytesFor(std::uint64_t samples, unsigned bits)
{
    const std::uint64_t total = saturatedProduct(samples, bits);
    return total == kSaturated ? total : total / 8 + (total % 8 != 0 ? 1 : 0);
}

std::uint64_t roundedUp(std::uint64_t number, std::uint64_t step)
{
    return (number + step - 1) / step * step;
}

} // namespace

std::uint64_t samplesPerRow(const PixelFormat& format, std::uint32_t width) noexcept
{
    if (format.packing == SamplePacking::Pairs)
        return roundedUp(width, 2);
    if (format.family == PixelFamily::Mono || format.family == PixelFamily::Bayer ||
        format.packing == SamplePacking::Planar || format.packing == SamplePacking::Semiplanar)
        return width;
    const unsigned group = pixelsPerGroup(format);
    return roundedUp(width, group) / group * format.order.size();
}

std::uint64_t imageBytes(const PixelFormat& format, std::uint32_t width, std::uint32_t height) noexcept
{
    const std::uint64_t samples = saturatedProduct(samplesPerRow(format, width), height);
    switch (format.packing) {
    case SamplePacking::Unpacked:
        return saturatedProduct(samples, format.bits > 8 ? 2 : 1);
    case SamplePacking::Planar:
        return saturatedProduct(samples, (format.bits > 8 ? 2 : 1) * format.order.size());
    case SamplePacking::Semiplanar: {
        // Each chroma row consists of Cb/Cr pairs. With 4:2:0, two rows of Y share one.
        const std::uint64_t rows = pixelsPerGroup(format) == 4 ? roundedUp(height, 2) / 2 : height;
        const std::uint64_t chroma = saturatedProduct(roundedUp(width, 2), rows);
        return samples > kSaturated - chroma ? kSaturated : samples + chroma;
    }
    case SamplePacking::Bits:
        return bytesFor(samples, format.bits);
    case SamplePacking::Bits32:
        return saturatedProduct(samples / 3, 4);
    case SamplePacking::Pairs:
        return saturatedProduct(samples / 2, 3);
    }
    return kSaturated;
}

std::uint64_t imageBytes(std::uint32_t value, std::uint32_t width, std::uint32_t height) noexcept
{
    const PixelFormat* const format = findPixelFormat(value);
    return format != nullptr ? imageBytes(*format, width, height)
                             : bytesFor(saturatedProduct(width, height), bitsPerPixel(value));
}

const PixelFormat* findPixelFormat(std::uint32_t value) noexcept
{
    return find(value, &PixelFormat::value);
}

const PixelFormat* findPixelFormat(std::string_view name) noexcept
{
    return find(name, &PixelFormat::name);
}

} // namespace cameralibs

// ConvImage with an image and a target that end where their memory ends. The result of a format that exists is that of
// the plain conversion of the tests.

#include "camera/OrvoCamUtl.h"
#include "tests/attack/fuzz/FuzzInput.h"
#include "tests/cameralibs/util/PfncFormats.h"
#include "tests/cameralibs/util/ReferenceConversion.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const std::uint8_t choice = input.byte();
    const auto width = static_cast<std::uint32_t>(input.byte()) + 1;
    const auto height = static_cast<std::uint32_t>(input.below(16)) + 1;
    if (choice >= kPfncFormats.size()) {
        // Any number: one that is no format is refused before the memory is looked at.
        const auto format = input.number<std::uint32_t>();
        for (const PfncFormat& known : kPfncFormats) {
            if (known.value == format)
                return 0;
        }
        REQUIRE(Orvo::ConvImage(0, format, 1, nullptr, nullptr, width, height) == Orvo::CAM_API_STS_NOT_IMPLEMENTED);
        return 0;
    }
    const PfncFormat& format = kPfncFormats[choice];
    const ReferenceConversion reference(format.name, width, height);
    std::vector<std::uint8_t> source(reference.sourceBytes());
    const std::string_view bytes = input.rest();
    for (std::size_t i = 0; i < source.size() && !bytes.empty(); ++i)
        source[i] = static_cast<std::uint8_t>(static_cast<std::uint8_t>(bytes[i % bytes.size()]) + i / bytes.size());
    source.shrink_to_fit();
    const std::size_t pixels = std::size_t{width} * height;
    const auto target = std::make_unique<std::uint8_t[]>(4 * pixels);
    REQUIRE(Orvo::ConvImage(0, format.value, 1, target.get(), source.data(), width, height) ==
            Orvo::CAM_API_STS_SUCCESS);
    const auto wanted = reference.convert(source.data());
    const double tolerance = reference.tolerance();
    for (std::size_t i = 0; i < pixels; ++i) {
        REQUIRE(std::abs(target[4 * i] - wanted[i].blue) <= tolerance);
        REQUIRE(std::abs(target[4 * i + 1] - wanted[i].green) <= tolerance);
        REQUIRE(std::abs(target[4 * i + 2] - wanted[i].red) <= tolerance);
        REQUIRE(target[4 * i + 3] == 255);
    }
    return 0;
}

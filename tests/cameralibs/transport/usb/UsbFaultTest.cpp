// Each fault of the emulated camera, and its effect: the status of the exported function that meets it, and the line in
// the log. With any fault the function returns within its limit, no wrong image is delivered, and the next camera opens
// and streams.

#include "tests/cameralibs/transport/usb/UsbFixture.h"

#include "tests/cameralibs/api/MemoryLimit.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <dlfcn.h>

using namespace Orvo;

namespace {

using Clock = std::chrono::steady_clock;

constexpr CAM_API_STATUS kGood = CAM_API_STS_SUCCESS;
constexpr CAM_API_STATUS kGone = CAM_API_STS_CAMERA_NOT_RESPONDING;

/// When the fault begins, which is what the program does next.
enum class Before { search, opening, reading, writing, start, image };

constexpr int kOnce = 1;
constexpr int kAlways = usb::kForEver;

struct Row {
    const char* fault;
    Before before;
    int times;
    CAM_API_STATUS status; ///< of a search: how many cameras are listed; of an image: its own
    const char* log = "";  ///< contained in the log, in any case: versions of Aravis differ in their capitals
};

const Row kRows[] = {
    {"stalled command", Before::reading, kOnce, kGood, "Command sending error: LIBUSB_ERROR_PIPE"},
    {"stalled command", Before::opening, kAlways, kGone, "Command sending error: LIBUSB_ERROR_PIPE"},
    {"stalled command", Before::reading, kAlways, kGone, "Command sending error: LIBUSB_ERROR_PIPE"},
    {"stalled answer", Before::reading, kOnce, kGood, "Ack reception error: LIBUSB_ERROR_PIPE"},
    {"stalled answer", Before::reading, kAlways, kGone, "Ack reception error: LIBUSB_ERROR_PIPE"},
    {"stalled payload", Before::image, kOnce, CAM_API_STS_UNEXPECTED_BUFFER_SIZE,
     "USB transfer error: LIBUSB_ERROR_PIPE"},
    {"answer of 6 bytes", Before::reading, kOnce, kGood, "Ack reception error: LIBUSB_ERROR_IO"},
    {"answer without its data", Before::reading, kOnce, kGood, "Ack reception error: LIBUSB_ERROR_IO"},
    {"answer without its data", Before::reading, kAlways, kGone, "Ack reception error: LIBUSB_ERROR_IO"},
    {"answer without its data", Before::writing, kAlways, kGood},
    {"answer without a byte", Before::reading, kAlways, kGone, "Ack reception error: LIBUSB_ERROR_IO"},
    {"oversized answer", Before::reading, kOnce, kGood, "Ack reception error: LIBUSB_ERROR_OVERFLOW"},
    {"oversized answer", Before::opening, kAlways, kGone, "Ack reception error: LIBUSB_ERROR_OVERFLOW"},
    {"cancelled answer", Before::reading, kOnce, kGood, "Ack reception error: LIBUSB_ERROR_IO"},
    {"short payload", Before::image, kOnce, CAM_API_STS_UNEXPECTED_BUFFER_SIZE,
     "image failed: 4101 CAM_API_STS_UNEXPECTED_BUFFER_SIZE"},
    {"oversized payload", Before::image, kOnce, CAM_API_STS_UNEXPECTED_BUFFER_SIZE,
     "USB transfer error: LIBUSB_ERROR_OVERFLOW"},
    {"cancelled payload", Before::image, kOnce, CAM_API_STS_UNEXPECTED_BUFFER_SIZE,
     "USB transfer error: LIBUSB_ERROR_IO"},
    {"empty payload", Before::image, kOnce, CAM_API_STS_UNEXPECTED_BUFFER_SIZE, "No data transferred"},
    {"no answer", Before::opening, kAlways, kGone, "Ack reception error: LIBUSB_ERROR_TIMEOUT"},
    {"no answer", Before::reading, kOnce, kGood, "Ack reception error: LIBUSB_ERROR_TIMEOUT"},
    {"no answer", Before::reading, kAlways, kGone, "Ack reception error: LIBUSB_ERROR_TIMEOUT"},
    {"no answer", Before::writing, kAlways, kGone, "Ack reception error: LIBUSB_ERROR_TIMEOUT"},
    {"late payload", Before::image, kOnce, kGood, "USB transfer error: LIBUSB_ERROR_TIMEOUT"},
    {"pending for 1 s", Before::reading, kOnce, kGood},
    {"pending for ever", Before::opening, kAlways, kGone},
    {"pending for ever", Before::reading, kAlways, kGone, "lost: "},
    {"pending for a minute, then silence", Before::reading, kOnce, kGone, "lost: "},
    {"wrong request id", Before::reading, kOnce, kGood, "Ack reception error: LIBUSB_ERROR_TIMEOUT"},
    {"wrong request id", Before::reading, kAlways, kGone, "Ack reception error: LIBUSB_ERROR_TIMEOUT"},
    {"wrong request id", Before::opening, kAlways, kGone, "Ack reception error: LIBUSB_ERROR_TIMEOUT"},
    {"answer to another command", Before::reading, kOnce, kGood, "Ack reception error: LIBUSB_ERROR_TIMEOUT"},
    {"answer of a former request first", Before::reading, kAlways, kGood},
    {"status: not implemented", Before::reading, kAlways, CAM_API_STS_NOT_IMPLEMENTED},
    {"status: invalid parameter", Before::reading, kAlways, CAM_API_STS_INVALID_PARAMETER},
    {"status: invalid address", Before::reading, kAlways, CAM_API_STS_INVALID_ADDRESS},
    {"status: write protect", Before::writing, kAlways, CAM_API_STS_WRITE_PROTECT},
    {"status: bad alignment", Before::reading, kAlways, CAM_API_STS_BAD_ALIGNMENT},
    {"status: access denied", Before::reading, kAlways, CAM_API_STS_ACCESS_DENIED},
    {"status: busy", Before::reading, kAlways, CAM_API_STS_BUSY},
    {"status: endpoint halted", Before::reading, kAlways, CAM_API_STS_UNSUCCESSFUL},
    {"status: error", Before::reading, kAlways, CAM_API_STS_UNSUCCESSFUL},
    {"status: error", Before::opening, kAlways, CAM_API_STS_XML_LOAD_ERR,
     "The camera answers, but its description cannot be read"},
    {"trailer: data discarded", Before::image, kOnce, CAM_API_STS_DATA_DISCARDED,
     "image failed: 41216 CAM_API_STS_DATA_DISCARDED"},
    {"trailer: data overrun", Before::image, kOnce, CAM_API_STS_PACKET_STATUS_ERROR,
     "image failed: 4103 CAM_API_STS_PACKET_STATUS_ERROR"},
    {"leader without a trailer", Before::image, kOnce, kGood, "USB transfer error: LIBUSB_ERROR_OVERFLOW"},
    {"trailer without a leader", Before::image, kOnce, kGood},
    {"image without a payload", Before::image, kOnce, CAM_API_STS_UNEXPECTED_BUFFER_SIZE},
    {"payload that shrinks", Before::image, kAlways, CAM_API_STS_UNEXPECTED_BUFFER_SIZE},
    {"payload that grows", Before::image, kAlways, CAM_API_STS_UNEXPECTED_BUFFER_SIZE},
    {"payload size of 0", Before::start, kAlways, CAM_API_STS_GENICAM_ERR, "[PayloadSize] No image has 0 bytes"},
    {"payload size of 4 GiB", Before::start, kAlways, CAM_API_STS_INVALID_PARAMETER,
     "4 buffers of 4294967296 bytes each would take 4 GiB or more"},
    {"stream payload size of 0", Before::start, kAlways, CAM_API_STS_GENICAM_ERR,
     "The camera's stream has impossible sizes"},
    {"stream payload size of 4 GiB", Before::start, kAlways, CAM_API_STS_UNEXPECTED_BUFFER_SIZE},
    {"stream payload size of 4 GiB", Before::opening, kAlways, kGood},
    {"alignment of 0", Before::start, kAlways, kGood},
    {"alignment of 2^255", Before::start, kAlways, CAM_API_STS_GENICAM_ERR, "The camera's stream has impossible sizes"},
    {"leader size of 4 GiB", Before::start, kAlways, CAM_API_STS_GENICAM_ERR,
     "The camera's stream has impossible sizes"},
    {"trailer size of 4 GiB", Before::start, kAlways, CAM_API_STS_GENICAM_ERR,
     "The camera's stream has impossible sizes"},
    {"trailer size of 2 GiB", Before::start, kAlways, CAM_API_STS_GENICAM_ERR,
     "The camera's stream has impossible sizes"},
    {"commands of 0 bytes at most", Before::opening, kAlways, CAM_API_STS_XML_LOAD_ERR,
     "The camera answers, but its description cannot be read"},
    {"answers of a header at most", Before::opening, kAlways, kGone},
    {"manifest nowhere", Before::opening, kAlways, CAM_API_STS_XML_LOAD_ERR,
     "The camera answers, but its description cannot be read"},
    {"description nowhere", Before::opening, kAlways, CAM_API_STS_XML_LOAD_ERR,
     "The camera answers, but its description cannot be read"},
    {"description of 0 bytes", Before::opening, kAlways, CAM_API_STS_XML_LOAD_ERR,
     "The camera answers, but its description cannot be read"},
    {"description of 4 GiB", Before::opening, kAlways, kGone, "failed to allocate 4294967296 bytes"},
    {"zipped description", Before::opening, kAlways, kGood},
    {"truncated zipped description", Before::opening, kAlways, CAM_API_STS_XML_LOAD_ERR, "Failed to load Genicam data"},
    {"zipped description that is not zipped", Before::opening, kAlways, CAM_API_STS_XML_LOAD_ERR,
     "Failed to load Genicam data"},
    {"zipped description of 1 GiB", Before::opening, kAlways, kGone, "failed to allocate 1073741824 bytes"},
    {"truncated description", Before::opening, kAlways, CAM_API_STS_XML_LOAD_ERR},
    {"description that is no XML", Before::opening, kAlways, CAM_API_STS_XML_LOAD_ERR},
    {"description without features", Before::opening, kAlways, CAM_API_STS_GENICAM_ERR,
     "The description has no category named \"Root\""},
    {"description of a false compression", Before::opening, kAlways, CAM_API_STS_XML_LOAD_ERR,
     "Unknown USB3Vision manifest schema type (7)"},
    {"unplugged in an access", Before::opening, kOnce, kGone},
    {"unplugged in an access", Before::reading, kOnce, kGone, "lost: "},
    {"unplugged in an access", Before::writing, kOnce, kGone, "lost: "},
    {"unplugged in an access", Before::start, kOnce, kGone, "lost: "},
    {"unplugged in a payload", Before::image, kOnce, kGone, "lost: Aravis has lost the camera"},
    {"no permission", Before::search, kAlways, 0, "Failed to open USB device: LIBUSB_ERROR_ACCESS"},
    {"no permission", Before::opening, kAlways, kGone, "Failed to open USB device: LIBUSB_ERROR_ACCESS"},
    {"claimed by another program", Before::opening, kAlways, CAM_API_STS_BUSY,
     "Another program or driver has the camera"},
};

/// The longest time that the documented limits allow, plus what a busy machine needs.
std::chrono::seconds limitOf(Before before)
{
    constexpr std::chrono::seconds kBusy(15);
    switch (before) {
    case Before::search:
        return std::chrono::seconds(4) + kBusy;
    case Before::opening:
        return std::chrono::seconds(20) + kBusy;
    default:
        return std::chrono::seconds(10) + kBusy;
    }
}

[[nodiscard]] std::string inLowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return text;
}

/// A row, and the mode of the stream.
struct Case {
    Row row;
    bool asynchronous;
};

class UsbFaultTest : public ::testing::TestWithParam<Case> {
public:
    ~UsbFaultTest() override
    {
        (void)Sys_Terminate();
        usb::useAsynchronousMode(false);
        usb::plugIn();
        ::unsetenv("ORVO_CAMERA_LOG"); // NOLINT(concurrency-mt-unsafe)
    }
    UsbFaultTest(const UsbFaultTest&) = delete;
    UsbFaultTest& operator=(const UsbFaultTest&) = delete;

protected:
    UsbFaultTest()
    {
        usb::unplug();
        usb::plugIn();
        ::setenv("ORVO_CAMERA_LOG", "warning", 1); // NOLINT(concurrency-mt-unsafe)
        EXPECT_EQ(Sys_Initialize(CAM_LAYER_USB3_VISION), kGood);
        EXPECT_EQ(Sys_CreateSignal(&m_signal), kGood);
    }

    [[nodiscard]] static std::uint32_t enumerate()
    {
        std::uint32_t count = 0;
        EXPECT_EQ(Sys_GetNumOfCameras(&count), kGood);
        return count;
    }

    [[nodiscard]] CAM_API_STATUS open() { return Cam_Open(0, &m_camera, m_signal, 1, nullptr, 1); }

    [[nodiscard]] CAM_API_STATUS start()
    {
        CAM_API_STATUS status = Strm_OpenSimple(m_camera, &m_stream, nullptr, nullptr, 4, nullptr);
        if (status != kGood)
            return status;
        m_recorder.attachTo(m_stream);
        return Strm_Start(m_stream, 8);
    }

    void setUpFor(Before before)
    {
        if (before == Before::search)
            return;
        ASSERT_EQ(enumerate(), 1U);
        if (before == Before::opening)
            return;
        ASSERT_EQ(open(), kGood);
        m_width = nodeOf(m_camera, "Width");
        if (before == Before::image) {
            ASSERT_EQ(start(), kGood);
            ASSERT_TRUE(m_recorder.waitForImages(3));
        }
    }

    [[nodiscard]] std::uint32_t meet(Before before)
    {
        std::int64_t value = 0;
        switch (before) {
        case Before::search:
            return enumerate();
        case Before::opening:
            return open();
        case Before::reading:
            return Nd_GetIntValue(m_camera, m_width, &value);
        case Before::writing:
            return Nd_SetIntValue(m_camera, m_width, 300);
        case Before::start: {
            const CAM_API_STATUS status = start();
            return status == kGood ? imageStatus() : status;
        }
        case Before::image:
            return imageStatus();
        }
        return CAM_API_STS_UNSUCCESSFUL;
    }

    /// The first error that an image brings; success where images go on without one.
    [[nodiscard]] CAM_API_STATUS imageStatus()
    {
        const auto over = [this] { return Sys_WaitForSignal(m_signal, 0) == kGood || !m_recorder.errors().empty(); };
        const Row& row = GetParam().row;
        // A busy program may have no buffer for the only image with the fault.
        const int tries = row.times == kOnce && row.status != kGood ? 10 : 1;
        for (int i = 0; i < tries && !over(); ++i) {
            if (i > 0)
                (void)usb::setFault(row.fault, row.times);
            EXPECT_TRUE(becomes([&] { return over() || usb::faultsShown() > 0; }));
            const std::size_t images = m_recorder.imageCount();
            EXPECT_TRUE(becomes([&] { return over() || m_recorder.imageCount() >= images + 10; }));
        }
        if (Sys_WaitForSignal(m_signal, 0) == kGood)
            return kGone;
        const auto errors = m_recorder.errors();
        return errors.empty() ? kGood : errors.front();
    }

    CAM_SIGNAL_HANDLE m_signal = 0;
    CAM_HANDLE m_camera = 0;
    CAM_STRM_HANDLE m_stream = 0;
    CAM_NODE_HANDLE m_width = 0;
    StreamRecorder m_recorder;
    const WrongImages m_wrong{m_recorder};
};

} // namespace

TEST_P(UsbFaultTest, StatusAndLogTellOfIt)
{
    const auto& [row, asynchronous] = GetParam();
    if (asynchronous && ::dlsym(RTLD_DEFAULT, "arv_uv_device_set_usb_mode") == nullptr)
        GTEST_SKIP() << "this version of Aravis has no asynchronous mode";
    usb::useAsynchronousMode(asynchronous);
    ASSERT_NO_FATAL_FAILURE(setUpFor(row.before));
    ::testing::internal::CaptureStderr();
    ASSERT_TRUE(usb::setFault(row.fault, row.times)) << row.fault;
    const Clock::time_point begin = Clock::now();
    const std::uint32_t status = meet(row.before);
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
    // An asynchronous transfer that stalls is never repeated, so that the image with the fault never ends.
    EXPECT_TRUE(usb::faultsShown() > 0 || (asynchronous && !m_recorder.errors().empty()));
    usb::clearFault();
    (void)Cam_Close(m_camera);
    const std::string log = ::testing::internal::GetCapturedStderr();
    EXPECT_LT(took, limitOf(row.before));
    // Aravis has other errors for asynchronous transfers, which only tests use.
    if (!asynchronous || row.before == Before::start) {
        // With sanitizers, memory is not limited, and transports write to standard error by themselves.
        const bool needsLimit = std::string_view(row.log).rfind("failed to allocate", 0) == 0;
        const std::uint32_t other = needsLimit && !MemoryLimit::kPossible ? CAM_API_STS_XML_LOAD_ERR : row.status;
        EXPECT_THAT(status, ::testing::AnyOf(row.status, other)) << log;
        EXPECT_THAT(inLowerCase(log), ::testing::HasSubstr(inLowerCase(MemoryLimit::kPossible ? row.log : "")));
    }

    usb::unplug();
    usb::plugIn();
    ASSERT_EQ(enumerate(), 1U);
    ASSERT_EQ(open(), kGood);
    m_recorder.clear();
    ASSERT_EQ(start(), kGood);
    EXPECT_TRUE(m_recorder.waitForImages(3));
    EXPECT_THAT(m_recorder.errors(), ::testing::IsEmpty());
    EXPECT_EQ(m_wrong.count(), 0) << "an image that was delivered is not the camera's";
}

namespace {

/// All rows in synchronous mode, and those that concern the stream in asynchronous mode as well.
std::vector<Case> cases()
{
    std::vector<Case> all;
    for (const Row& row : kRows)
        all.push_back({row, false});
    for (const Row& row : kRows) {
        if (row.before == Before::start || row.before == Before::image)
            all.push_back({row, true});
    }
    return all;
}

std::string nameOf(const ::testing::TestParamInfo<Case>& info)
{
    constexpr const char* kBefore[] = {"Search", "Opening", "Reading", "Writing", "Start", "Image"};
    const auto& [row, asynchronous] = info.param;
    std::string name = std::string(row.fault) + "Before" + kBefore[static_cast<int>(row.before)] +
                       (row.times == kOnce ? "Once" : "") + (asynchronous ? "Asynchronous" : "");
    name.erase(std::remove_if(name.begin(), name.end(),
                              [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }),
               name.end());
    return name;
}

} // namespace

TEST(UsbFaultTableTest, EachFaultHasARow)
{
    for (const std::string& fault : usb::faultNames()) {
        EXPECT_TRUE(std::any_of(std::begin(kRows), std::end(kRows), [&](const Row& row) { return row.fault == fault; }))
            << fault;
    }
}

INSTANTIATE_TEST_SUITE_P(Each, UsbFaultTest, ::testing::ValuesIn(cases()), nameOf);

#include "tests/cameralibs/transport/usb/Faults.h"

#include "tests/cameralibs/transport/gige/ZipFile.h"
#include "tests/cameralibs/transport/usb/LibUsb.h"

#include <algorithm>
#include <cstring>

namespace usb {

namespace {

using namespace std::chrono_literals;

constexpr std::uint64_t kNowhere = 0xffff'ffff'0000;
constexpr std::uint64_t kFourGigabytes = 1ULL << 32;

/// Where the records of a zip file tell the size of what is zipped.
constexpr std::size_t kZipLocalSize = 22;
constexpr std::size_t kZipDirectorySize = 24;

void put16(std::uint8_t* bytes, std::size_t offset, std::uint16_t number)
{
    std::memcpy(bytes + offset, &number, sizeof number);
}

/// All answers to the command.
template <std::uint16_t status> void refuse(Exchange& exchange)
{
    for (Answer& answer : exchange.answers) {
        answer.bytes.resize(kHeaderSize + 4);
        put16(answer.bytes.data(), kStatusOffset, status);
    }
}

template <int result> void failAnswer(Exchange& exchange)
{
    exchange.answers = {{{}, result}};
}

void resizeAnswers(Exchange& exchange, std::size_t size)
{
    for (Answer& answer : exchange.answers)
        answer.bytes.resize(size);
}

Answer pendingAnswer(const Bytes& command, std::uint16_t patienceMs)
{
    Answer answer{Bytes(kHeaderSize + 4)};
    std::copy_n(command.begin(), kHeaderSize, answer.bytes.begin());
    put16(answer.bytes.data(), kStatusOffset, 0);
    put16(answer.bytes.data(), kCommandOffset, kPendingAnswer);
    put16(answer.bytes.data(), kSizeOffset, 4);
    put16(answer.bytes.data(), kHeaderSize + 2, patienceMs);
    return answer;
}

template <int result> void failPayload(StreamTransfer& transfer)
{
    if (transfer.part == Part::Payload)
        transfer.result = result;
}

void skip(StreamTransfer& transfer, Part part)
{
    transfer.skipped = transfer.part == part;
}

void zipDescription(FakeCamera& camera, std::size_t missing)
{
    const std::string text = camera.description();
    gige::Bytes bytes = gige::zip("camera.xml", {text.begin(), text.end()}).bytes;
    bytes.resize(bytes.size() - missing);
    camera.setDescription({bytes.begin(), bytes.end()}, FakeCamera::Compression::zip);
}

} // namespace

const std::vector<Fault>& faults()
{
    static const std::vector<Fault> theFaults = {
        // Stalls: an endpoint that is halted stays so until the halt is cleared.
        {"stalled command", [](Exchange& exchange) { exchange.result = kPipe; }},
        {"stalled answer", failAnswer<kPipe>},
        {"stalled payload", failPayload<kPipe>},

        // Short, oversized and cancelled transfers.
        {"answer of 6 bytes", [](Exchange& exchange) { resizeAnswers(exchange, 6); }},
        {"answer without its data", [](Exchange& exchange) { resizeAnswers(exchange, kHeaderSize); }},
        {"answer without a byte", [](Exchange& exchange) { resizeAnswers(exchange, 0); }},
        {"oversized answer", [](Exchange& exchange) { resizeAnswers(exchange, 600); }},
        {"cancelled answer", failAnswer<kIo>},
        {"short payload", [](StreamTransfer& transfer) { transfer.size /= transfer.part == Part::Payload ? 2 : 1; }},
        {"oversized payload", failPayload<kOverflow>},
        {"cancelled payload", failPayload<kIo>},
        {"empty payload",
         [](StreamTransfer& transfer) { transfer.size = transfer.part == Part::Payload ? 0 : transfer.size; }},

        // Time-outs.
        {"no answer", [](Exchange& exchange) { exchange.answers.clear(); }},
        {"late payload",
         [](StreamTransfer& transfer) { transfer.pause = transfer.part == Part::Leader ? 500ms : 0ms; }},

        // Pending acknowledgements.
        {"pending for 1 s",
         [](Exchange& exchange) {
             exchange.answers.insert(exchange.answers.begin(), pendingAnswer(exchange.command, 5000));
             exchange.answers.back().after = 1s;
         }},
        {"pending for ever",
         [](Exchange& exchange) {
             exchange.answers = {pendingAnswer(exchange.command, 1000)};
             exchange.answers.back().after = 20ms;
             exchange.answers.back().forEver = true;
         }},
        {"pending for a minute, then silence",
         [](Exchange& exchange) { exchange.answers = {pendingAnswer(exchange.command, 60000)}; }},

        // Answers to something else.
        {"wrong request id",
         [](Exchange& exchange) {
             for (Answer& answer : exchange.answers)
                 answer.bytes[kIdOffset] ^= 0x55U;
         }},
        {"answer to another command",
         [](Exchange& exchange) {
             for (Answer& answer : exchange.answers)
                 answer.bytes[kCommandOffset] ^= 2U;
         }},
        {"answer of a former request first",
         [](Exchange& exchange) {
             Answer former = exchange.answers.front();
             --former.bytes[kIdOffset];
             exchange.answers.insert(exchange.answers.begin(), former);
         }},

        // Error statuses in acknowledgements and trailers.
        {"status: not implemented", refuse<0x8001>},
        {"status: invalid parameter", refuse<0x8002>},
        {"status: invalid address", refuse<kInvalidAddress>},
        {"status: write protect", refuse<0x8004>},
        {"status: bad alignment", refuse<0x8005>},
        {"status: access denied", refuse<0x8006>},
        {"status: busy", refuse<0x8007>},
        {"status: endpoint halted", refuse<0xa002>},
        {"status: error", refuse<0x8fff>},
        {"trailer: data discarded",
         [](StreamTransfer& transfer) {
             if (transfer.part == Part::Trailer)
                 put16(transfer.data, kTrailerStatus, 0xa100);
         }},
        {"trailer: data overrun",
         [](StreamTransfer& transfer) {
             if (transfer.part == Part::Trailer)
                 put16(transfer.data, kTrailerStatus, 0xa101);
         }},

        // Leaders without trailers, and other images that miss a part.
        {"leader without a trailer", [](StreamTransfer& transfer) { skip(transfer, Part::Trailer); }},
        {"trailer without a leader", [](StreamTransfer& transfer) { skip(transfer, Part::Leader); }},
        {"image without a payload", [](StreamTransfer& transfer) { skip(transfer, Part::Payload); }},

        // Payloads of changing size.
        {"payload that shrinks", [](FakeCamera& camera) { camera.setOddPayload(std::uint64_t{320} * 200); }},
        {"payload that grows", [](FakeCamera& camera) { camera.setOddPayload(std::uint64_t{320} * 280); }},

        // Impossible sizes.
        {"payload size of 0", [](FakeCamera& camera) { camera.setPayload(0); }},
        {"payload size of 4 GiB", [](FakeCamera& camera) { camera.setPayload(kFourGigabytes); }},
        {"stream payload size of 0", [](FakeCamera& camera) { camera.setStreamPayload(0); }},
        {"stream payload size of 4 GiB", [](FakeCamera& camera) { camera.setStreamPayload(kFourGigabytes); }},
        {"alignment of 0", [](FakeCamera& camera) { camera.setValue(kStreamInfo, 0); }},
        {"alignment of 2^255", [](FakeCamera& camera) { camera.setValue(kStreamInfo, 255U << 24); }},
        {"leader size of 4 GiB", [](FakeCamera& camera) { camera.setValue(kStreamLeaderSize, 0xffff'ffff); }},
        {"trailer size of 4 GiB", [](FakeCamera& camera) { camera.setValue(kStreamTrailerSize, 0xffff'ffff); }},
        {"trailer size of 2 GiB", [](FakeCamera& camera) { camera.setValue(kStreamTrailerSize, 0x8000'0000); }},
        {"commands of 0 bytes at most",
         [](FakeCamera& camera) {
             camera.setValue(kMaximumCommand, 0);
             camera.setValue(kMaximumAnswer, 0);
         }},
        {"answers of a header at most", [](FakeCamera& camera) { camera.setValue(kMaximumAnswer, kHeaderSize); }},

        // Manifests and descriptions.
        {"manifest nowhere", [](FakeCamera& camera) { camera.setValue64(kManifestAddress, kNowhere); }},
        {"description nowhere", [](FakeCamera& camera) { camera.setValue64(kManifest + kEntryAddress, kNowhere); }},
        {"description of 0 bytes", [](FakeCamera& camera) { camera.setValue64(kManifest + kEntrySize, 0); }},
        {"description of 4 GiB", [](FakeCamera& camera) { camera.setValue64(kManifest + kEntrySize, kFourGigabytes); }},
        {"zipped description", [](FakeCamera& camera) { zipDescription(camera, 0); }},
        {"truncated zipped description", [](FakeCamera& camera) { zipDescription(camera, 100); }},
        {"zipped description that is not zipped",
         [](FakeCamera& camera) { camera.setDescription(camera.description(), FakeCamera::Compression::zip); }},
        {"zipped description of 1 GiB",
         [](FakeCamera& camera) {
             gige::ZipFile zip = gige::zipBomb("camera.xml", 8);
             // Only the size that it claims is as large.
             const std::uint32_t claimed = 1U << 30;
             std::memcpy(zip.bytes.data() + kZipLocalSize, &claimed, sizeof claimed);
             std::memcpy(zip.bytes.data() + zip.directory + kZipDirectorySize, &claimed, sizeof claimed);
             camera.setDescription({zip.bytes.begin(), zip.bytes.end()}, FakeCamera::Compression::zip);
         }},
        {"truncated description",
         [](FakeCamera& camera) {
             const std::string text = camera.description();
             camera.setDescription(text.substr(0, text.size() / 2), FakeCamera::Compression::none);
         }},
        {"description that is no XML",
         [](FakeCamera& camera) { camera.setDescription(std::string(1000, 'x'), FakeCamera::Compression::none); }},
        {"description without features",
         [](FakeCamera& camera) { camera.setDescription("<RegisterDescription/>", FakeCamera::Compression::none); }},
        {"description of a false compression",
         [](FakeCamera& camera) { camera.setValue(kManifest + kEntrySchema, 7U << 10); }},

        // Unplugged by a transfer. At other moments a test does that itself.
        {"unplugged in an access", [](Exchange& exchange) { exchange.unplugged = true; }},
        {"unplugged in a payload",
         [](StreamTransfer& transfer) { transfer.unplugged = transfer.part == Part::Payload; }},

        // What the system has against it.
        {"no permission", SystemFault{kAccess, 0}},
        {"claimed by another program", SystemFault{0, kBusy}},
    };
    return theFaults;
}

const Fault* faultNamed(std::string_view name)
{
    const auto found = std::find_if(faults().begin(), faults().end(), [&](const Fault& it) { return it.name == name; });
    return found == faults().end() ? nullptr : &*found;
}

} // namespace usb

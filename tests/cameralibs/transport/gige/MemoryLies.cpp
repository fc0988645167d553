#include "tests/cameralibs/transport/gige/Lies.h"
#include "tests/cameralibs/transport/gige/ZipFile.h"

#include <algorithm>
#include <sstream>

namespace gige {

namespace {

constexpr std::size_t kMegabyte = 1U << 20;

void setUrl(CameraMemory& memory, const std::string& url)
{
    memory.setText(kFirstUrl, url, kUrlSize);
    memory.setText(kSecondUrl, url, kUrlSize);
}

void setText(CameraMemory& memory, const std::string& text)
{
    memory.setDescription({text.begin(), text.end()}, "gv-test.xml");
}

std::string localUrl(const std::string& address, const std::string& length)
{
    return "Local:gv-test.xml;" + address + ";" + length;
}

std::string hexadecimal(std::uint64_t number)
{
    std::ostringstream text;
    text << std::hex << number;
    return text.str();
}

void garbageBootstrap(CameraMemory& memory, Random& random)
{
    const std::uint32_t address = memory.value(kAddress);
    const Bytes garbage = random.bytes(random.pick<std::size_t>({kFirstUrl, kStreamPort, 0x1000}));
    std::copy(garbage.begin(), garbage.end(), memory.registers().begin());
    if (!random.oneIn(4))
        memory.setValue(kAddress, address);
}

/// Registers that programs compute with.
void absurdRegisters(CameraMemory& memory, Random& random)
{
    const auto setSome = [&](std::initializer_list<std::uint32_t> registers) {
        for (const std::uint32_t address : registers) {
            if (random.oneIn(2))
                memory.setValue(address, static_cast<std::uint32_t>(random.absurd(32)));
        }
    };
    if (random.oneIn(2)) {
        setSome({kVersion, kDeviceMode, kInterfaces, kStreamChannels, kCapability, kHeartbeat, kTickFrequencyHigh,
                 kTickFrequencyLow, kStreamPacketSize, kStreamSourcePort});
    } else {
        setSome({kWidth, kHeight, kPixelFormat, kPayloadSize, kFrameRate, kTransportLocked, kExposure});
    }
}

/// Its images are of a different size then.
void falsePayloadSize(CameraMemory& memory, Random& random)
{
    memory.setValue(kPayloadSize,
                    random.pick<std::uint32_t>({0, 1, 1000, 512 * 512 - 1, 512 * 512 + 1, 0x1000000, 0x20000000,
                                                0x7fffffff, 0x80000000, 0xfffffffc, 0xffffffff}));
}

/// That of the other camera, of nobody, of everybody.
void anothersAddress(CameraMemory& memory, Random& random)
{
    memory.setValue(kAddress,
                    random.pick<std::uint32_t>({0x7f000002, 0x7f000009, 0, 0xffffffff, 0x7fffffff, 0xe0000001}));
}

void garbageTexts(CameraMemory& memory, Random& random)
{
    const Bytes garbage = random.bytes(kDiscoveryAnswerSize - kManufacturer);
    std::copy(garbage.begin(), garbage.end(), memory.registers().begin() + kManufacturer);
}

void garbageUrl(CameraMemory& memory, Random& random)
{
    Bytes garbage = random.bytes(kSecondUrl + kUrlSize - kFirstUrl);
    std::replace(garbage.begin(), garbage.end(), std::uint8_t{0}, std::uint8_t{'A'});
    std::copy(garbage.begin(), garbage.end(), memory.registers().begin() + kFirstUrl);
}

void urlWithoutEnd(CameraMemory& memory, Random& random)
{
    auto url = random.pick<std::string>({"Local:", "Local:gv-test.xml;100000;1000", "Local:gv-test.xml;", ""});
    url.resize(kUrlSize, random.pick({'A', ' ', ';', '0', 'f', '%'}));
    setUrl(memory, url);
    const Bytes garbage(kInterfaces - kSecondUrl, 'A');
    std::copy(garbage.begin(), garbage.end(), memory.registers().begin() + kSecondUrl);
}

void urlAbsurdAddress(CameraMemory& memory, Random& random)
{
    setUrl(memory, localUrl(random.pick<std::string>({"FFFFFFFF", "FFFFFFFC", "0", "1", "100001", "FFFFFFFFFFFFFFFF",
                                                      "80000000", "-4", "100000000"}),
                            hexadecimal(memory.description().size())));
}

void urlAbsurdLength(CameraMemory& memory, Random& random)
{
    setUrl(memory, localUrl(hexadecimal(kDescriptionAddress),
                            random.pick<std::string>({"0", "1", "3", "7FFFFFFF", "FFFFFFFF", "FFFFFFFFFFFFFFFF",
                                                      "80000000", "-1", "-80000000", "4000000", "10000000000000000"})));
}

void urlWithoutFields(CameraMemory& memory, Random& random)
{
    setUrl(memory,
           random.pick<std::string>(
               {"", "Local", "Local:", "Local:;", "Local:;;", "Local:;;;;;;;;;", "Local:gv-test.xml",
                "Local:gv-test.xml;", "Local:gv-test.xml;100000", "Local:gv-test.xml;100000;",
                "Local:gv-test;100000;1000", "Local:gv-test.xml;zz;yy", "Local:%s%n%s%n.xml;100000;1000", ":", ";",
                "local:gv-test.zip;100000;10", "Local:///gv-test.xml;0x100000;0x1000?SchemaVersion=1.1.0"}));
}

void fileUrl(CameraMemory& memory, Random& random)
{
    setUrl(memory, random.pick<std::string>({"File:///etc/passwd", "File:/etc/passwd", "File:/dev/zero",
                                             "File:///dev/zero", "File:/dev/stdin", "File:/proc/self/environ",
                                             "File:/dev/tty", "File:../../../../../../etc/passwd", "file:///dev/random",
                                             "File:", "File:/", "File:///proc/kmsg"}));
}

void httpUrl(CameraMemory& memory, Random& random)
{
    setUrl(memory,
           random.pick<std::string>({"Http://127.0.0.1/gv-test.xml", "http://127.0.0.3:3956/gv-test.xml",
                                     "Http:", "https://127.0.0.1/gv-test.zip", "ftp://127.0.0.1/gv-test.xml",
                                     "Http://nowhere.invalid/gv-test.xml", "smb://127.0.0.1/share/gv-test.xml"}));
}

void hugeDescription(CameraMemory& memory, Random& random)
{
    const std::size_t size = 64 * kMegabyte;
    std::string text;
    if (random.oneIn(2)) {
        // The honest one, and then what an XML parser may pass over.
        const auto& honest = memory.description();
        text.assign(honest.begin(), std::find(honest.begin(), honest.end(), '\0'));
        text += random.pick<std::string>({"<!--", " "});
        text.resize(size - 4, random.pick({' ', '\n', 'x'}));
        text += "-->\n";
    } else {
        const auto piece =
            random.pick<std::string>({"<a>", "<Group Comment=\"x\">", "&lt;", "<Integer Name=\"A\"/>", "a"});
        text = "<RegisterDescription>";
        while (text.size() < size)
            text += piece;
    }
    setText(memory, text);
}

void garbageDescription(CameraMemory& memory, Random& random)
{
    Bytes description = memory.description();
    switch (random.below(4)) {
    case 0:
        description = random.bytes(random.below(20'000) + 1);
        break;
    case 1:
        description.resize(random.below(description.size()) + 1);
        break;
    case 2:
        for (int i = 0; i < 30; ++i)
            random.pick(description) = static_cast<std::uint8_t>(random.number());
        break;
    default: // pieces of it in a different order
        for (int i = 0; i < 8; ++i) {
            std::rotate(description.begin(), &random.pick(description) - description.data() + description.begin(),
                        description.end());
        }
    }
    memory.setDescription(description, "gv-test.xml");
}

void entityBomb(CameraMemory& memory, Random& random)
{
    std::string text = "<?xml version=\"1.0\"?><!DOCTYPE RegisterDescription [<!ENTITY a0 \"aaaaaaaaaa\">";
    for (int i = 1; i < 12; ++i) {
        const std::string inner = "&a" + std::to_string(i - 1) + ";";
        text += "<!ENTITY a" + std::to_string(i) + " \"";
        for (int copies = 0; copies < 10; ++copies)
            text += inner;
        text += "\">";
    }
    if (random.oneIn(2))
        text += "<!ENTITY a11 SYSTEM \"file:///etc/passwd\">";
    setText(memory, text + "]><RegisterDescription><Category Name=\"Root\"><ToolTip>&a11;</ToolTip></Category>"
                           "</RegisterDescription>");
}

void deepDescription(CameraMemory& memory, Random& random)
{
    std::string text = "<RegisterDescription>";
    const auto depth = random.pick<std::size_t>({1000, 20'000, 200'000});
    for (std::size_t i = 0; i < depth; ++i)
        text += "<Group>";
    for (std::size_t i = 0; i < depth; ++i)
        text += "</Group>";
    setText(memory, text + "</RegisterDescription>");
}

void setZip(CameraMemory& memory, const Bytes& bytes)
{
    memory.setDescription(bytes, "gv-test.zip");
}

ZipFile zippedDescription(const CameraMemory& memory)
{
    return zip("gv-test.xml", memory.description());
}

template <typename Fields> void falsify(Bytes& zip, std::size_t record, const Fields& fields, Random& random)
{
    const ZipField& field = fields[random.below(fields.size())];
    const std::uint64_t value = random.absurd(static_cast<unsigned>(8 * field.size));
    for (std::size_t i = 0; i < field.size; ++i)
        zip[record + field.offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

void zipFalseLocalHeader(CameraMemory& memory, Random& random)
{
    ZipFile zip = zippedDescription(memory);
    falsify(zip.bytes, 0, kZipLocalFields, random);
    setZip(memory, zip.bytes);
}

void zipFalseDirectory(CameraMemory& memory, Random& random)
{
    ZipFile zip = zippedDescription(memory);
    falsify(zip.bytes, zip.directory, kZipDirectoryFields, random);
    setZip(memory, zip.bytes);
}

void zipFalseEnd(CameraMemory& memory, Random& random)
{
    ZipFile zip = zippedDescription(memory);
    falsify(zip.bytes, zip.end, kZipEndFields, random);
    setZip(memory, zip.bytes);
}

void zipGarbage(CameraMemory& memory, Random& random)
{
    Bytes bytes = zippedDescription(memory).bytes;
    if (random.oneIn(2)) {
        for (int i = 0; i < 20; ++i)
            random.pick(bytes) = static_cast<std::uint8_t>(random.number());
    } else {
        bytes.resize(random.below(bytes.size()) + 1);
    }
    setZip(memory, bytes);
}

void hugeZip(CameraMemory& memory, Random& random)
{
    setZip(memory, zipBomb("gv-test.xml", random.pick<std::size_t>({64, 512, 1500})).bytes);
}

} // namespace

std::vector<Lie> memoryLies()
{
    return {
        {"garbage-bootstrap", garbageBootstrap},
        {"absurd-registers", absurdRegisters},
        {"false-payload-size", falsePayloadSize},
        {"anothers-address", anothersAddress},
        {"garbage-texts", garbageTexts},
        {"garbage-url", garbageUrl},
        {"url-without-end", urlWithoutEnd},
        {"url-absurd-address", urlAbsurdAddress},
        {"url-absurd-length", urlAbsurdLength},
        {"url-without-fields", urlWithoutFields},
        {"file-url", fileUrl},
        {"http-url", httpUrl},
        {"huge-description", hugeDescription},
        {"garbage-description", garbageDescription},
        {"entity-bomb", entityBomb},
        {"deep-description", deepDescription},
        {"zip-false-local-header", zipFalseLocalHeader},
        {"zip-false-directory", zipFalseDirectory},
        {"zip-false-end", zipFalseEnd},
        {"zip-garbage", zipGarbage},
        {"zip-bomb", hugeZip},
    };
}

} // namespace gige

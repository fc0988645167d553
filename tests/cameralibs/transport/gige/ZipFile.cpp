#include "tests/cameralibs/transport/gige/ZipFile.h"

#include <zlib.h>

namespace gige {

namespace {

constexpr std::uint16_t kDeflated = 8;

void appendLittle(Bytes& bytes, std::uint64_t number, unsigned size)
{
    for (unsigned i = 0; i < size; ++i)
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

/// What zlib makes of a text that comes in pieces.
class Deflation {
public:
    Deflation()
    {
        constexpr int kWithoutHeader = -15;
        constexpr int kMemoryLevel = 8;
        ::deflateInit2(&m_stream, Z_BEST_SPEED, Z_DEFLATED, kWithoutHeader, kMemoryLevel, Z_DEFAULT_STRATEGY);
    }
    ~Deflation() { ::deflateEnd(&m_stream); }
    Deflation(const Deflation&) = delete;
    Deflation& operator=(const Deflation&) = delete;

    void add(const Bytes& piece)
    {
        m_checksum = static_cast<std::uint32_t>(::crc32(m_checksum, piece.data(), static_cast<uInt>(piece.size())));
        m_size += piece.size();
        run(piece, Z_NO_FLUSH);
    }
    void end() { run({}, Z_FINISH); }

    [[nodiscard]] const Bytes& deflated() const { return m_deflated; }
    [[nodiscard]] std::size_t size() const { return m_size; }
    [[nodiscard]] std::uint32_t checksum() const { return m_checksum; }

private:
    void run(const Bytes& piece, int flush)
    {
        m_stream.next_in = const_cast<Bytef*>(piece.data());
        m_stream.avail_in = static_cast<uInt>(piece.size());
        Bytes out(1U << 16);
        do {
            m_stream.next_out = out.data();
            m_stream.avail_out = static_cast<uInt>(out.size());
            ::deflate(&m_stream, flush);
            m_deflated.insert(m_deflated.end(), out.data(), m_stream.next_out);
        } while (m_stream.avail_out == 0);
    }

    z_stream m_stream = {};
    Bytes m_deflated;
    std::size_t m_size = 0;
    std::uint32_t m_checksum = 0;
};

ZipFile wrap(const std::string& fileName, Deflation& content)
{
    content.end();
    ZipFile zip;
    Bytes& bytes = zip.bytes;
    // What the local header and the directory both tell.
    const auto appendCommon = [&] {
        appendLittle(bytes, 20, 2); // version needed
        appendLittle(bytes, 0, 2);  // flags
        appendLittle(bytes, kDeflated, 2);
        appendLittle(bytes, 0, 4); // time and date
        appendLittle(bytes, content.checksum(), 4);
        appendLittle(bytes, content.deflated().size(), 4);
        appendLittle(bytes, content.size(), 4);
        appendLittle(bytes, fileName.size(), 2);
        appendLittle(bytes, 0, 2); // extra field
    };
    appendLittle(bytes, 0x04034b50, 4);
    appendCommon();
    bytes.insert(bytes.end(), fileName.begin(), fileName.end());
    bytes.insert(bytes.end(), content.deflated().begin(), content.deflated().end());

    zip.directory = bytes.size();
    appendLittle(bytes, 0x02014b50, 4);
    appendLittle(bytes, 20, 2); // version made by
    appendCommon();
    appendLittle(bytes, 0, 2); // comment
    appendLittle(bytes, 0, 2); // disk
    appendLittle(bytes, 0, 6); // attributes
    appendLittle(bytes, 0, 4); // offset of the local header
    bytes.insert(bytes.end(), fileName.begin(), fileName.end());

    zip.end = bytes.size();
    appendLittle(bytes, 0x06054b50, 4);
    appendLittle(bytes, 0, 4); // disks
    appendLittle(bytes, 1, 2); // entries here
    appendLittle(bytes, 1, 2); // entries in all
    appendLittle(bytes, zip.end - zip.directory, 4);
    appendLittle(bytes, zip.directory, 4);
    appendLittle(bytes, 0, 2); // comment
    return zip;
}

} // namespace

ZipFile zip(const std::string& fileName, const Bytes& content)
{
    Deflation deflation;
    deflation.add(content);
    return wrap(fileName, deflation);
}

ZipFile zipBomb(const std::string& fileName, std::size_t megabytes)
{
    const Bytes piece(1U << 20, ' ');
    Deflation deflation;
    for (; megabytes > 0; --megabytes)
        deflation.add(piece);
    return wrap(fileName, deflation);
}

} // namespace gige

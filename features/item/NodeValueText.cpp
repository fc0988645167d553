#include "features/item/NodeValueText.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace {

using namespace Orvo;

/// The `count` low bytes of the value, the highest first.
template <std::size_t count> std::array<int, count> bytesOf(std::int64_t value)
{
    std::array<int, count> bytes{};
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<int>(static_cast<std::uint64_t>(value) >> (8 * (count - 1 - i)) & 0xFF);
    return bytes;
}

template <std::size_t count> QString joined(const std::array<int, count>& bytes, int base, int width, QChar separator)
{
    QStringList parts;
    for (const int byte : bytes)
        parts += QStringLiteral("%1").arg(byte, width, base, QLatin1Char('0'));
    return parts.join(separator);
}

QString ipv4Text(const std::array<int, 4>& bytes)
{
    return joined(bytes, 10, 0, QLatin1Char('.'));
}

QString macText(const std::array<int, 6>& bytes)
{
    return joined(bytes, 16, 2, QLatin1Char('-'));
}

/// Exactly `count` decimal numbers; only their low 8 bits are used.
template <std::size_t count> std::optional<std::array<int, count>> parseBytes(const QString& text, QChar separator)
{
    const QStringList parts = text.split(separator);
    if (parts.size() != static_cast<int>(count))
        return std::nullopt;
    std::array<int, count> bytes{};
    for (std::size_t i = 0; i < count; ++i) {
        bool ok = false;
        bytes[i] = parts[static_cast<int>(i)].toInt(&ok, 10) & 0xFF;
        if (!ok)
            return std::nullopt;
    }
    return bytes;
}

std::optional<TypedInteger> parseIpv4(const QString& text)
{
    const auto p = parseBytes<4>(text, QLatin1Char('.'));
    if (!p)
        return std::nullopt;
    // Deliberate: the first part is shifted by 4 bits, not by 24.
    const std::int32_t value = (*p)[3] + (*p)[2] * 0x100 + (*p)[1] * 0x10000 + (*p)[0] * 0x10;
    return TypedInteger{value, ipv4Text(*p)};
}

/// Deliberate: the parts are parsed as decimal numbers although they are displayed in hexadecimal.
std::optional<TypedInteger> parseMac(const QString& text)
{
    const auto p = parseBytes<6>(text, QLatin1Char('-'));
    if (!p)
        return std::nullopt;
    std::int64_t value = 0;
    for (const int byte : *p)
        value = value * 0x100 + byte;
    return TypedInteger{value, macText(*p)};
}

} // namespace

QString hexText(std::int64_t value)
{
    return QStringLiteral("0x%1").arg(static_cast<qlonglong>(value), 8, 16, QLatin1Char('0'));
}

QString integerText(std::int64_t value, NodeRepresentation representation)
{
    switch (representation) {
    case NODE_REPRESENTATION_HEX_NUMBER:
        return hexText(value);
    case NODE_REPRESENTATION_IPV4_ADDRESS:
        return ipv4Text(bytesOf<4>(value));
    case NODE_REPRESENTATION_MAC_ADDRESS:
        return macText(bytesOf<6>(value));
    default:
        return QString::number(static_cast<qlonglong>(value));
    }
}

QString boolText(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString floatText(double value, char format, std::int64_t precision)
{
    // A double has at most 1074 fractional digits. An untrusted camera may request more, which would only waste memory.
    // A negative number means the default.
    constexpr std::int64_t kMostDigits = 1074;
    return QString::number(value, format, static_cast<int>(std::clamp<std::int64_t>(precision, -1, kMostDigits)));
}

QString withoutUnit(const QString& text)
{
    const int blank = text.indexOf(QLatin1Char(' '));
    return blank > 0 ? text.left(blank) : text;
}

std::optional<TypedInteger> parseInteger(const QString& text, NodeRepresentation representation)
{
    if (representation == NODE_REPRESENTATION_IPV4_ADDRESS)
        return parseIpv4(text);
    if (representation == NODE_REPRESENTATION_MAC_ADDRESS)
        return parseMac(text);
    bool ok = false;
    const std::int64_t value =
        text.startsWith(QLatin1String("0x")) ? text.midRef(2).toLongLong(&ok, 16) : text.toLongLong(&ok, 10);
    if (!ok)
        return std::nullopt;
    return TypedInteger{value, integerText(value, representation)};
}

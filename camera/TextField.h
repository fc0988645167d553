#pragma once

#include <QByteArray>

#include <iterator>

/// The bytes of a text in a field of fixed size: up to the first NUL, or all of them where there is none. They stay
/// where they are. The encoding differs from field to field and is the caller's business.
///
/// For the viewer: the camera libraries do without Qt.
template <typename Field> [[nodiscard]] QByteArray fieldBytes(const Field& field)
{
    const char* const bytes = std::data(field);
    return QByteArray::fromRawData(bytes, static_cast<int>(qstrnlen(bytes, static_cast<uint>(std::size(field)))));
}

#pragma once

#include <QByteArray>

#include <iterator>

/// A view of the bytes of a text in a field of fixed size: up to the first NUL, or all of them if there is none. The
/// encoding differs from field to field and is up to the caller.
///
/// For the viewer only, because the camera libraries do not use Qt.
template <typename Field> [[nodiscard]] QByteArray fieldBytes(const Field& field)
{
    const char* const bytes = std::data(field);
    return QByteArray::fromRawData(bytes, static_cast<int>(qstrnlen(bytes, static_cast<uint>(std::size(field)))));
}

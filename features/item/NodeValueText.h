#pragma once

#include "camera/OrvoCamApi.h"

#include <QString>

#include <cstdint>
#include <optional>

/// Values of nodes as the user reads and types them; no camera access.

/// "0x" and at least 8 lower-case digits; of a negative value its 64 bits.
[[nodiscard]] QString hexText(std::int64_t value);
/// In the notation of the representation.
[[nodiscard]] QString integerText(std::int64_t value, Orvo::NodeRepresentation representation);
[[nodiscard]] QString boolText(bool value);
/// As QString::number writes it.
[[nodiscard]] QString floatText(double value, char format, std::int64_t precision);

/// The text before the first blank, which separates a value from its unit. A text that begins with a blank is
/// unchanged.
[[nodiscard]] QString withoutUnit(const QString& text);

struct TypedInteger {
    std::int64_t value; ///< what is written
    QString text;       ///< shown after the write
};

/// Nothing where the text is not a number in the notation of the representation.
[[nodiscard]] std::optional<TypedInteger> parseInteger(const QString& text, Orvo::NodeRepresentation representation);

#pragma once

#include "camera/OrvoCamApi.h"

#include <QString>

#include <cstdint>
#include <optional>

/// Conversion between node values and the texts that the user reads and types. Does not access the camera.

/// "0x" and at least 8 lower-case digits; all 64 bits for a negative value.
[[nodiscard]] QString hexText(std::int64_t value);
/// In the notation of the representation.
[[nodiscard]] QString integerText(std::int64_t value, Orvo::NodeRepresentation representation);
[[nodiscard]] QString boolText(bool value);
/// Formatted by QString::number().
[[nodiscard]] QString floatText(double value, char format, std::int64_t precision);

/// The text before the first blank, which separates a value from its unit. A text that begins with a blank is
/// unchanged.
[[nodiscard]] QString withoutUnit(const QString& text);

struct TypedInteger {
    std::int64_t value; ///< to be written
    QString text;       ///< to be shown after the write
};

/// nullopt if the text is not a number in the notation of the representation.
[[nodiscard]] std::optional<TypedInteger> parseInteger(const QString& text, Orvo::NodeRepresentation representation);

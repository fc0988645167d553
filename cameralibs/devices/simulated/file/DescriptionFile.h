#pragma once

#include <optional>
#include <string>

namespace cameralibs::simulated {

/// A GenICam description from a file, held in memory.
struct DescriptionFile {
    std::string xml;
    std::string model; ///< as the description names it, or the file where it cannot be read so far
};

/// Nothing where the file cannot be read.
[[nodiscard]] std::optional<DescriptionFile> readDescriptionFile(const std::string& path);

} // namespace cameralibs::simulated

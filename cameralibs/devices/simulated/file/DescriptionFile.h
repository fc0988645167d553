#pragma once

#include <optional>
#include <string>

namespace cameralibs::simulated {

/// The contents of a GenICam description file.
struct DescriptionFile {
    std::string xml;
    std::string model; ///< ModelName of the description; the file's name if that cannot be read
};

/// nullopt if the file cannot be read.
[[nodiscard]] std::optional<DescriptionFile> readDescriptionFile(const std::string& path);

} // namespace cameralibs::simulated

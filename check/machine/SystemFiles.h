#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace check {

/// The files with which the kernel and the distribution describe the machine: /sys, /proc, /dev and /etc. Tests put
/// them into another folder, the root.
class SystemFiles {
public:
    explicit SystemFiles(std::string root = {});

    [[nodiscard]] bool exists(const std::string& path) const;

    /// Whether this user may read and write the file.
    [[nodiscard]] bool writable(const std::string& path) const;

    /// Its beginning, up to a length that no such file exceeds. No value if it cannot be read.
    [[nodiscard]] std::optional<std::string> text(const std::string& path) const;

    /// The first line; empty if there is none.
    [[nodiscard]] std::string line(const std::string& path) const;
    [[nodiscard]] std::optional<std::int64_t> number(const std::string& path) const;

    /// The names in a folder, sorted; none if it cannot be read.
    [[nodiscard]] std::vector<std::string> entries(const std::string& path) const;

    /// Empty if it is not a symbolic link or cannot be read.
    [[nodiscard]] std::string linkTarget(const std::string& path) const;

private:
    std::string m_root;
};

} // namespace check

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace check {

/// The files in which the kernel and the distribution tell about the machine: /sys, /proc, /dev and /etc, below a root
/// that is empty for the machine itself.
class SystemFiles {
public:
    explicit SystemFiles(std::string root = {});

    [[nodiscard]] bool exists(const std::string& path) const;

    /// Whether this user may read and write the file.
    [[nodiscard]] bool writable(const std::string& path) const;

    /// Up to a limit that no such file needs; nothing where it cannot be read.
    [[nodiscard]] std::optional<std::string> text(const std::string& path) const;

    /// The first line; empty where there is none.
    [[nodiscard]] std::string line(const std::string& path) const;
    [[nodiscard]] std::optional<std::int64_t> number(const std::string& path) const;

    /// The names in a folder, sorted; none where it cannot be read.
    [[nodiscard]] std::vector<std::string> entries(const std::string& path) const;

    /// Empty for what is no symbolic link, or one of somebody else's.
    [[nodiscard]] std::string linkTarget(const std::string& path) const;

private:
    std::string m_root;
};

} // namespace check

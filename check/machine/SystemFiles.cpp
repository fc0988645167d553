#include "check/machine/SystemFiles.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <utility>

#include <unistd.h>

namespace check {

namespace {

constexpr std::streamsize kLongestText = 65536;

} // namespace

SystemFiles::SystemFiles(std::string root)
    : m_root(std::move(root))
{
}

bool SystemFiles::exists(const std::string& path) const
{
    return ::access((m_root + path).c_str(), F_OK) == 0;
}

bool SystemFiles::writable(const std::string& path) const
{
    return ::access((m_root + path).c_str(), R_OK | W_OK) == 0;
}

std::optional<std::string> SystemFiles::text(const std::string& path) const
{
    std::ifstream file(m_root + path, std::ios::binary);
    std::string text(kLongestText, '\0');
    file.read(text.data(), kLongestText);
    // Some files of /sys can be opened but not read.
    if (file.bad() || (file.gcount() == 0 && !file.eof()))
        return {};
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

std::string SystemFiles::line(const std::string& path) const
{
    const std::string all = text(path).value_or("");
    return all.substr(0, all.find('\n'));
}

std::optional<std::int64_t> SystemFiles::number(const std::string& path) const
{
    const std::string digits = line(path);
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size())
        return {};
    return value;
}

std::vector<std::string> SystemFiles::entries(const std::string& path) const
{
    std::vector<std::string> names;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(m_root + path, error), end; !error && entry != end;
         entry.increment(error))
        names.push_back(entry->path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string SystemFiles::linkTarget(const std::string& path) const
{
    std::error_code error;
    return std::filesystem::read_symlink(m_root + path, error).string();
}

} // namespace check

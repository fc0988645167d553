#include "tests/cameralibs/transport/gige/Resources.h"

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

std::size_t entries(const char* folder)
{
    std::error_code error;
    const std::filesystem::directory_iterator all(folder, error);
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

/// The number after a word of a process's status; 0 for a process that is gone meanwhile.
std::size_t numberOf(const std::filesystem::path& process, const std::string& word)
{
    std::ifstream status(process / "status");
    for (std::string found; status >> found;) {
        std::size_t number = 0;
        if (found == word && status >> number)
            return number;
    }
    return 0;
}

/// In the numbering of /proc, which may be that of an outer namespace.
std::size_t childrenOf(std::size_t parent)
{
    std::size_t count = 0;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        const std::string name = entry.path().filename();
        if (std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; }) &&
            numberOf(entry.path(), "PPid:") == parent)
            ++count;
    }
    return count;
}

} // namespace

Resources Resources::now()
{
    ::malloc_trim(0);
    const std::filesystem::path self = "/proc/self";
    Resources resources;
    resources.descriptors = entries("/proc/self/fd");
    resources.threads = entries("/proc/self/task");
    resources.children = childrenOf(numberOf(self, "Pid:"));
    resources.memory = numberOf(self, "RssAnon:") + numberOf(self, "RssShmem:");
    return resources;
}

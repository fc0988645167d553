#pragma once

#include <string>

/// A description file that is removed at the end of a test.
class DescriptionFile {
public:
    explicit DescriptionFile(const std::string& text);
    ~DescriptionFile();
    DescriptionFile(const DescriptionFile&) = delete;
    DescriptionFile& operator=(const DescriptionFile&) = delete;

    [[nodiscard]] const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

/// A description with these nodes, and a Root with these features.
[[nodiscard]] std::string descriptionOf(const std::string& model, const std::string& features,
                                        const std::string& nodes);

/// An Integer feature in a register of four bytes.
[[nodiscard]] std::string integerNode(const std::string& name, unsigned address, const std::string& range);

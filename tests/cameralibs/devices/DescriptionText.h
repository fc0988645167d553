#pragma once

#include <string>

/// A temporary description file.
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

/// A description with these nodes, and with these features in Root.
[[nodiscard]] std::string descriptionOf(const std::string& model, const std::string& features,
                                        const std::string& nodes);

/// An Integer feature with a register of four bytes.
[[nodiscard]] std::string integerNode(const std::string& name, unsigned address, const std::string& range);

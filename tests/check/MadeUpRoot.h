#pragma once

#include <string>

/// A folder with files of /sys, /proc, /dev and /etc that are made up; removed at the end.
class MadeUpRoot {
public:
    MadeUpRoot();
    ~MadeUpRoot();
    MadeUpRoot(const MadeUpRoot&) = delete;
    MadeUpRoot& operator=(const MadeUpRoot&) = delete;

    [[nodiscard]] const std::string& path() const { return m_path; }

    void write(const std::string& file, const std::string& text) const;
    void link(const std::string& file, const std::string& target) const;
    void remove(const std::string& file) const;

    /// As the kernel shows the camera of the emulated bus: device 3 of bus 2.
    void plugInUsbCamera() const;

    /// The camera's node, with the permissions of its owner only.
    void forbidUsbCamera() const;

    /// A process with a name and a parent, which has the file open.
    void startProgram(int process, const std::string& name, int parent, const std::string& openFile = {}) const;

private:
    std::string m_path;
};

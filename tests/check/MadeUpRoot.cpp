#include "tests/check/MadeUpRoot.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr const char* kNode = "/dev/bus/usb/002/003";

} // namespace

MadeUpRoot::MadeUpRoot()
    : m_path(fs::temp_directory_path() / "orvocam-check-XXXXXX")
{
    EXPECT_NE(::mkdtemp(m_path.data()), nullptr);
    // Programs of other users look at it, too.
    fs::permissions(m_path, fs::perms::all);
}

MadeUpRoot::~MadeUpRoot()
{
    std::error_code error;
    fs::remove_all(m_path, error);
}

void MadeUpRoot::write(const std::string& file, const std::string& text) const
{
    fs::create_directories(fs::path(m_path + file).parent_path());
    std::ofstream(m_path + file) << text;
}

void MadeUpRoot::link(const std::string& file, const std::string& target) const
{
    fs::create_directories(fs::path(m_path + file).parent_path());
    fs::create_symlink(target, m_path + file);
}

void MadeUpRoot::remove(const std::string& file) const
{
    fs::remove_all(m_path + file);
}

void MadeUpRoot::plugInUsbCamera() const
{
    const std::string devices = "/sys/bus/usb/devices/";
    write(devices + "2-1/busnum", "2\n");
    write(devices + "2-1/devnum", "3\n");
    write(devices + "2-1/speed", "5000\n");
    write(devices + "2-1/manufacturer", "Fake Maker\n");
    write(devices + "2-1/product", "U3V-Fake\n");
    write(devices + "2-1/serial", "U01\n");
    write(devices + "2-1:1.0/bInterfaceClass", "ef\n");
    write(devices + "2-1:1.0/bInterfaceSubClass", "05\n");
    write(devices + "2-1:1.0/bInterfaceProtocol", "00\n");
    write(devices + "2-1:1.1/bInterfaceClass", "ef\n");
    write(devices + "2-1:1.1/bInterfaceSubClass", "05\n");
    write(devices + "2-1:1.1/bInterfaceProtocol", "02\n");
    write(kNode, "");
    fs::permissions(m_path + kNode, fs::perms(0666));
    write("/sys/module/usbcore/parameters/usbfs_memory_mb", "256\n");
}

void MadeUpRoot::forbidUsbCamera() const
{
    fs::permissions(m_path + kNode, fs::perms(0600));
}

void MadeUpRoot::startProgram(int process, const std::string& name, int parent, const std::string& openFile) const
{
    const std::string folder = "/proc/" + std::to_string(process) + "/";
    write(folder + "comm", name + "\n");
    write(folder + "status", "Name:\t" + name + "\nPPid:\t" + std::to_string(parent) + "\n");
    if (!openFile.empty())
        link(folder + "fd/7", openFile);
}

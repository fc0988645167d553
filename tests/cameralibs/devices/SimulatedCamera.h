#pragma once

#include "tests/cameralibs/api/CameraAccess.h"

#include <cstdint>
#include <string>
#include <vector>

/// The library with simulated cameras only, initialised as long as this lives. The cameras are enumerated.
class Library {
public:
    /// `cameras` is the value of ORVO_SIMULATED_CAMERAS, null if it is not set.
    explicit Library(const char* cameras = "3");
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// Enumerates and returns the number of cameras.
    [[nodiscard]] static std::uint32_t enumerate();
    [[nodiscard]] static Orvo::CAM_INFO info(std::uint32_t index);
};

/// The built-in cameras, by index.
constexpr std::uint32_t kMono = 0;
constexpr std::uint32_t kColour = 1;
constexpr std::uint32_t kLarge = 2;
constexpr std::uint32_t kBuiltIn = 3;

/// An opened camera. A failing access to a feature fails the test.
class SimulatedCamera {
public:
    explicit SimulatedCamera(std::uint32_t index);
    ~SimulatedCamera();
    SimulatedCamera(const SimulatedCamera&) = delete;
    SimulatedCamera& operator=(const SimulatedCamera&) = delete;

    [[nodiscard]] Orvo::CAM_HANDLE handle() const { return m_camera; }
    [[nodiscard]] Orvo::CAM_SIGNAL_HANDLE removal() const { return m_removal; }

    [[nodiscard]] Orvo::CAM_NODE_HANDLE node(const std::string& name) const;
    [[nodiscard]] Orvo::NodeAccessMode access(const std::string& name) const;

    [[nodiscard]] std::int64_t integer(const std::string& name) const;
    [[nodiscard]] std::int64_t greatest(const std::string& name) const;
    [[nodiscard]] double real(const std::string& name) const;
    [[nodiscard]] double greatestReal(const std::string& name) const;
    [[nodiscard]] bool flag(const std::string& name) const;
    [[nodiscard]] std::string text(const std::string& name) const;
    [[nodiscard]] std::string choice(const std::string& name) const;

    void setInteger(const std::string& name, std::int64_t value) const;
    void setReal(const std::string& name, double value) const;
    void setFlag(const std::string& name, bool value) const;
    void setText(const std::string& name, const std::string& value) const;
    void choose(const std::string& name, const std::string& entry) const;
    void execute(const std::string& name) const;

    /// The names of the features in a category, and of the entries of an enumeration.
    [[nodiscard]] std::vector<std::string> features(const std::string& category) const;
    [[nodiscard]] std::vector<std::string> entries(const std::string& enumeration) const;

private:
    Orvo::CAM_SIGNAL_HANDLE m_removal = 0;
    Orvo::CAM_HANDLE m_camera = 0;
};

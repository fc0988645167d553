#pragma once

#include "tests/cameralibs/api/CameraAccess.h"

#include "tests/cameralibs/devices/DescriptionText.h"

#include <string>

/// The library with one camera that is made from a description, opened if possible.
class DescribedCamera {
public:
    /// The whole description.
    explicit DescribedCamera(const std::string& xml);
    ~DescribedCamera();
    DescribedCamera(const DescribedCamera&) = delete;
    DescribedCamera& operator=(const DescribedCamera&) = delete;

    /// The status of Cam_Open, and its error text.
    [[nodiscard]] Orvo::CAM_API_STATUS status() const { return m_status; }
    [[nodiscard]] const std::string& error() const { return m_error; }

    [[nodiscard]] Orvo::CAM_HANDLE handle() const { return m_camera; }
    [[nodiscard]] Orvo::CAM_NODE_HANDLE node(const char* name) const { return nodeOf(m_camera, name); }

    // By the name of a node: the result, or 0 with the status in `lastStatus`.
    [[nodiscard]] Orvo::NodeAccessMode access(const char* name);
    [[nodiscard]] std::int64_t integer(const char* name);
    [[nodiscard]] double number(const char* name);
    [[nodiscard]] std::string text(TextOperation operation, const char* name) const;

    Orvo::CAM_API_STATUS lastStatus = 0;

private:
    DescriptionFile m_file;
    Orvo::CAM_HANDLE m_camera = 0;
    Orvo::CAM_API_STATUS m_status = 0;
    std::string m_error;
};

/// A description with these nodes, a port named Device and an empty Root.
[[nodiscard]] std::string describe(const std::string& nodes);

/// The same with these features in Root; names separated by blanks.
[[nodiscard]] std::string describe(const std::string& features, const std::string& nodes);

/// An IntReg of 4 bytes.
[[nodiscard]] std::string intReg(const std::string& name, unsigned address, const std::string& access = "RW",
                                 const std::string& more = "");

/// An Integer with a constant value.
[[nodiscard]] std::string constant(const std::string& name, std::int64_t value);

/// The last text of Misc_GetLastGenICamError on this thread.
[[nodiscard]] std::string lastGenICamError();

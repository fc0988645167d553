#pragma once

#include <string>
#include <vector>

namespace check {

/// The log of the camera library, which it writes to standard error. The exported functions do not tell that a search
/// could not be made: they just list no cameras. Only the log does.
///
/// To be created before Sys_Initialize and before there are other threads, and destroyed after Sys_Terminate. Until
/// then nothing else that is written to standard error is shown.
class LibraryLog {
public:
    LibraryLog();

    /// Shows the log if the user has asked for one by ORVO_CAMERA_LOG.
    ~LibraryLog();
    LibraryLog(const LibraryLog&) = delete;
    LibraryLog& operator=(const LibraryLog&) = delete;

    /// Why a search could not be made or was cut short.
    [[nodiscard]] std::vector<std::string> failedSearches() const;

private:
    [[nodiscard]] std::string text() const;

    bool m_wanted;       ///< by the user
    int m_file;          ///< what is written instead, -1 on failure
    int m_standard = -1; ///< the real standard error
};

} // namespace check

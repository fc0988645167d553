#pragma once

#include <QString>

#include <cstdio>
#include <memory>

/// The file for the operation log, if the environment variable ORVO_OPERATION_LOG names one; "-" is standard output.
/// Lives on the GUI thread.
class OperationLogFile {
public:
    /// Opens the file for appending. False on failure; true if no file is named.
    [[nodiscard]] bool open();

    /// Writes an entry unchanged. False on failure: the file is closed, and further entries are discarded.
    [[nodiscard]] bool append(const QString& entry);

    /// The last failure and its reason, as a message for the user.
    [[nodiscard]] const QString& failure() const { return m_failure; }

private:
    struct Close {
        void operator()(std::FILE* file) const;
    };

    bool fail(int error);

    QString m_name;
    QString m_failure;
    std::unique_ptr<std::FILE, Close> m_file; // null if nothing is to be written
};

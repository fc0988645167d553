#pragma once

#include <QString>

#include <cstdio>
#include <memory>

/// The file that takes the operation log, where the environment variable ORVO_OPERATION_LOG names one; "-" is standard
/// output. GUI thread.
class OperationLogFile {
public:
    /// Opens the file; what it holds already stays. False where that fails; true where no file is named.
    [[nodiscard]] bool open();

    /// Writes an entry as it is. False where that fails: the file is closed then, and further entries are left out.
    [[nodiscard]] bool append(const QString& entry);

    /// What failed last, and why, for the user.
    [[nodiscard]] const QString& failure() const { return m_failure; }

private:
    struct Close {
        void operator()(std::FILE* file) const;
    };

    bool fail(int error);

    QString m_name;
    QString m_failure;
    std::unique_ptr<std::FILE, Close> m_file; // null where nothing is to be written
};

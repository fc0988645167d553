#include "app/OperationLogFile.h"

#include <QByteArray>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// Null on failure. A named pipe never blocks the window: opening it fails without a reader, and writing fails if it is
/// full because the reader has stalled.
std::FILE* openToAppend(const char* name)
{
    const int descriptor = ::open(name, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
    if (descriptor < 0)
        return nullptr;
    std::FILE* const file = ::fdopen(descriptor, "a");
    if (file == nullptr)
        ::close(descriptor);
    return file;
}

} // namespace

void OperationLogFile::Close::operator()(std::FILE* file) const
{
    // Every entry has been flushed, so closing cannot fail.
    if (file != stdout)
        static_cast<void>(std::fclose(file));
}

bool OperationLogFile::open()
{
    const QByteArray name = qgetenv("ORVO_OPERATION_LOG");
    if (name.isEmpty())
        return true;
    m_name = QFile::decodeName(name);
    m_file.reset(name == "-" ? stdout : openToAppend(name.constData()));
    if (!m_file)
        return fail(errno);
    // If the reader of a pipe is gone, report the failure; SIGPIPE must not end the program.
    std::signal(SIGPIPE, SIG_IGN);
    return true;
}

bool OperationLogFile::append(const QString& entry)
{
    if (!m_file)
        return true;
    const QByteArray bytes = entry.toUtf8();
    const auto size = static_cast<std::size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, m_file.get()) == size && std::fflush(m_file.get()) == 0)
        return true;
    return fail(errno);
}

bool OperationLogFile::fail(int error)
{
    m_file.reset();
    m_failure = QStringLiteral("Operation log %1: %2").arg(m_name, qt_error_string(error));
    return false;
}

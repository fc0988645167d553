#pragma once

#include <QByteArray>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>

/// What this process holds, by the files of /proc.
namespace process {

struct Held {
    int threads = 0;
    int descriptors = 0;
};

[[nodiscard]] inline Held held()
{
    const auto entries = [](const char* folder) {
        return static_cast<int>(QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
    };
    return {entries("/proc/self/task"), entries("/proc/self/fd")};
}

/// The same, once it is within the limit or that has taken too long: the kernel lists a thread for a moment after it
/// was joined.
[[nodiscard]] inline Held heldWithin(const Held& limit)
{
    constexpr int kSettlingMs = 10000;
    QElapsedTimer timer;
    timer.start();
    Held now = held();
    while ((now.threads > limit.threads || now.descriptors > limit.descriptors) && !timer.hasExpired(kSettlingMs)) {
        QThread::msleep(1);
        now = held();
    }
    return now;
}

/// Resident memory in KiB.
[[nodiscard]] inline long residentKib()
{
    QFile file("/proc/self/status");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).simplified().split(' ').first().toLong();
    }
    return 0;
}

} // namespace process

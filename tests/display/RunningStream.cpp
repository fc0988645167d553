#include "tests/display/RunningStream.h"

#include <QElapsedTimer>
#include <QThread>
#include <QtTest>

#include <algorithm>

bool waitBlocked(const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > kPatienceMs)
            return false;
        QThread::msleep(1);
    }
    return true;
}

bool waitRoundsBlocked(int rounds)
{
    const int until = scripted::count("Sys_WaitForSignal") + rounds;
    return waitBlocked([until] { return scripted::count("Sys_WaitForSignal") >= until; });
}

int conversions()
{
    return scripted::count("ConvImage");
}

// --- RunningStream --------------------------------------------------------------------------------------------------

RunningStream::RunningStream()
{
    m_driver.open();
    start();
}

void RunningStream::start()
{
    m_driver.start();
    QObject::connect(
        thread(), &DispThread::dispImage, thread(), [this] { ++m_images; }, Qt::DirectConnection);
    QObject::connect(
        thread(), &DispThread::dispFps, thread(),
        [this](double capture, double display) {
            const std::lock_guard lock(m_mutex);
            m_rates.push_back({capture, display, m_images - m_imagesReported, std::chrono::steady_clock::now()});
            m_imagesReported = m_images;
        },
        Qt::DirectConnection);
}

std::vector<RunningStream::Rates> RunningStream::rates() const
{
    const std::lock_guard lock(m_mutex);
    return m_rates;
}

bool RunningStream::waitForReports(std::size_t count) const
{
    return QTest::qWaitFor([&] { return rates().size() >= count; }, kPatienceMs);
}

// --- Feeder ---------------------------------------------------------------------------------------------------------

Feeder::Feeder(int periodMs)
    : m_thread([this, periodMs] {
        while (!m_stop) {
            scripted::deliverImage(std::uint64_t(++m_frameNumber));
            QThread::msleep(static_cast<unsigned long>(periodMs));
        }
    })
{
}

Feeder::~Feeder()
{
    m_stop = true;
    m_thread.join();
}

// --- CallTimes ------------------------------------------------------------------------------------------------------

CallTimes::CallTimes(const std::vector<std::string>& operations)
{
    for (const std::string& operation : operations) {
        scripted::onCall(operation, [operation, notes = m_notes] {
            const std::lock_guard lock(notes->mutex);
            notes->entries.push_back({operation, Clock::now()});
        });
    }
}

std::vector<CallTimes::Entry> CallTimes::entries() const
{
    const std::lock_guard lock(m_notes->mutex);
    return m_notes->entries;
}

int CallTimes::count(const std::string& operation) const
{
    const std::vector<Entry> noted = entries();
    return static_cast<int>(
        std::count_if(noted.begin(), noted.end(), [&](const Entry& entry) { return entry.operation == operation; }));
}

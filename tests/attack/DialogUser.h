#pragma once

#include <QFileDialog>
#include <QObject>
#include <QString>

#include <cstdint>
#include <random>
#include <utility>

class DiscoveryDlg;

/// Uses whatever modal window or popup an action has opened, and closes it after a while.
class DialogUser : public QObject {
public:
    explicit DialogUser(QString folder)
        : m_folder(std::move(folder))
    {
        startTimer(kPeriodMs);
    }

    /// The seed decides what happens until the next call.
    void begin(std::uint32_t seed)
    {
        m_random.seed(seed);
        m_turns = 0;
    }

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    static constexpr int kPeriodMs = 1;

    std::uint32_t draw(std::uint32_t below) { return static_cast<std::uint32_t>(m_random() % below); }
    void actIn(DiscoveryDlg& dialog, bool enough);
    void actIn(QFileDialog& dialog, bool enough);

    QString m_folder;
    std::minstd_rand m_random;
    int m_turns = 0;
};

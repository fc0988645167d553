// A user who does anything, with a camera that does anything:
//
//     random_user [--actions N] [--seed N] [--stalls]    a sequence; by default the quick form; with --stalls no action
//                                                       may take the window more than 200 ms of processor time
//     random_user --seed N --only 3,17,40      some actions of a sequence, each printed
//
// random_gige_user is the same with the camera libraries and a GigE camera that comes and goes.
//
// The actions run in a process of their own. Each is drawn from the seed and its number alone, so that any of them can
// be left out: after a failure the program looks for the few that are enough, and prints them.

#include "tests/attack/RandomUser.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int kFound = 3; // exit status of a process that found something

struct Task {
    RandomUser::Options options;
    std::vector<int> actions;
};

/// In the process of the user: what was found, to standard output; the exit status.
int perform(const Task& task)
{
    const auto user = makeRandomUser(task.options);
    for (const int number : task.actions) {
        const QStringList wrong = user->act(number);
        if (!wrong.isEmpty()) {
            std::printf("after action %d: %s\n", number, qPrintable(wrong.join("\n  ")));
            return kFound;
        }
    }
    const QStringList wrong = user->finish();
    for (const QString& line : wrong)
        std::printf("at the end: %s\n", qPrintable(line));
    return wrong.isEmpty() ? EXIT_SUCCESS : kFound;
}

QString listOf(const std::vector<int>& actions)
{
    QStringList texts;
    for (std::size_t i = 0; i < actions.size(); ++i) {
        const std::size_t first = i;
        while (i + 1 < actions.size() && actions[i + 1] == actions[i] + 1)
            ++i;
        texts << (first == i ? QString::number(actions[i]) : QString("%1-%2").arg(actions[first]).arg(actions[i]));
    }
    return texts.join(',');
}

std::vector<int> actionsOf(const QString& list)
{
    std::vector<int> actions;
    for (const QString& part : list.split(',')) {
        const QStringList ends = part.split('-');
        for (int number = ends.first().toInt(); number <= ends.last().toInt(); ++number)
            actions.push_back(number);
    }
    return actions;
}

/// Runs the actions in a process of their own.
class Trial {
public:
    explicit Trial(const Task& task, int patienceMs)
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(QCoreApplication::applicationFilePath(),
                        {"--seed", QString::number(task.options.seed), "--only", listOf(task.actions),
                         task.options.prints ? "--print" : "--silent",
                         task.options.judgesStalls ? "--stalls" : "--no-stalls"});
        m_ended = m_process.waitForFinished(patienceMs);
        if (!m_ended) {
            m_process.kill();
            m_process.waitForFinished();
        }
        m_output = m_process.readAll();
    }

    [[nodiscard]] bool passed() const
    {
        return m_ended && m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == EXIT_SUCCESS;
    }
    [[nodiscard]] QByteArray output() const { return m_ended ? m_output : m_output + "it does not end\n"; }

private:
    QProcess m_process;
    bool m_ended = false;
    QByteArray m_output;
};

/// Leaves out as many actions as possible, in blocks that become smaller.
std::vector<int> shrink(Task task)
{
    constexpr int kMostTrials = 200;
    constexpr int kTrialMs = 300000;
    int trials = 0;
    for (std::size_t block = task.actions.size() / 2; block > 0; block /= 2) {
        for (std::size_t at = 0; at < task.actions.size() && trials < kMostTrials;) {
            Task shorter = task;
            const auto begin = shorter.actions.begin() + static_cast<std::ptrdiff_t>(at);
            const auto left = static_cast<std::ptrdiff_t>(std::min(block, shorter.actions.size() - at));
            shorter.actions.erase(begin, begin + left);
            ++trials;
            if (!shorter.actions.empty() && !Trial(shorter, kTrialMs).passed()) {
                task.actions = shorter.actions;
            } else {
                at += block;
            }
        }
    }
    return task.actions;
}

int supervise(Task task)
{
    constexpr int kChunk = 20000; // actions of one process
    QElapsedTimer timer;
    timer.start();
    const std::vector<int> all = task.actions;
    for (std::size_t first = 0; first < all.size(); first += kChunk) {
        const auto begin = all.begin() + static_cast<std::ptrdiff_t>(first);
        task.actions.assign(begin,
                            begin + static_cast<std::ptrdiff_t>(std::min<std::size_t>(kChunk, all.size() - first)));
        const Trial trial(task, -1);
        if (trial.passed()) {
            std::printf("%s", trial.output().constData());
            std::fflush(stdout);
            continue;
        }
        std::printf("%s\nLooking for the actions that are enough ...\n", trial.output().constData());
        std::fflush(stdout);
        // What comes after the failure is not needed.
        const QRegularExpressionMatch last = QRegularExpression("after action (\\d+):").match(trial.output());
        if (last.hasMatch()) {
            const int number = last.captured(1).toInt();
            task.actions.erase(std::remove_if(task.actions.begin(), task.actions.end(),
                                              [number](int action) { return action > number; }),
                               task.actions.end());
        }
        task.actions = shrink(task);
        task.options.prints = true;
        std::printf("%s --seed %u --only %s\n%s",
                    qPrintable(QFileInfo(QCoreApplication::applicationFilePath()).fileName()), task.options.seed,
                    qPrintable(listOf(task.actions)), Trial(task, -1).output().constData());
        return EXIT_FAILURE;
    }
    std::printf("random user: %zu actions of seed %u, nothing wrong, %lld s\n", all.size(), task.options.seed,
                static_cast<long long>(timer.elapsed() / 1000));
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    const AttackApplication application(argc, argv);
    Task task;
    int count = kQuickActions;
    const QStringList arguments = QCoreApplication::arguments();
    task.options.judgesStalls = arguments.contains("--stalls");
    const auto value = [&arguments](const char* option) {
        const int at = arguments.indexOf(option);
        return at < 0 || at + 1 >= arguments.size() ? QString() : arguments[at + 1];
    };
    if (!value("--seed").isEmpty())
        task.options.seed = value("--seed").toUInt();
    if (!value("--actions").isEmpty())
        count = value("--actions").toInt();
    if (!value("--only").isEmpty()) {
        task.actions = actionsOf(value("--only"));
        task.options.prints = !arguments.contains("--silent");
        std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); // a crash must not swallow what was printed
        return perform(task);
    }
    for (int number = 0; number < count; ++number)
        task.actions.push_back(number);
    return supervise(task);
}

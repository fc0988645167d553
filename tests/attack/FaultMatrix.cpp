// A session of the viewer, run once for every camera call that it makes, with that call failing:
//
//     fault_matrix                          one call of each operation per step; the statuses alternate
//     fault_matrix --all                    every call with every status
//     fault_matrix OPERATION CALL STATUS    one case; call 0 stands for every call of the operation
//
// After each step of the session actions, log and rows of the window must be right, and at its end nothing may be left.

#include "features/view/FeatureView.h"
#include "tests/attack/Process.h"
#include "tests/attack/ScriptedSession.h"
#include "tests/attack/WindowModel.h"
#include "tests/support/Patience.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

constexpr std::array<Orvo::CAM_API_STATUS, 4> kStatuses = {19, 258, 2055, 0xFFFFFFFF};

constexpr int kEveryCall = 0;

struct Fault {
    std::string operation; // empty: none
    int call = kEveryCall;
    Orvo::CAM_API_STATUS status = 0;

    [[nodiscard]] QString text() const { return QString("%1 %2 %3").arg(operation.c_str()).arg(call).arg(status); }
};

/// Operations that other threads call. How often they are called depends on the machine.
const std::set<std::string> kOfOtherThreads = {"Sys_WaitForSignal", "Strm_GetCurrentBufferIndex",
                                               "Strm_LockBuffer",   "Strm_UnlockBuffer",
                                               "ConvImage",         "GetCamIndexFromCamHandle"};
constexpr int kCallsOfOtherThreads = 2; // that fail one by one

// --- The case that is running, printed when it crashes --------------------------------------------------------------

std::array<char, 256> runningCase{};

void lastWords(int signal)
{
    if (write(STDERR_FILENO, runningCase.data(), std::strlen(runningCase.data())) < 0)
        _exit(EXIT_FAILURE);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// --- One session ----------------------------------------------------------------------------------------------------

class Session {
public:
    explicit Session(const Fault& fault)
        : m_fault(fault)
        , m_valuesComparable(fault.operation.rfind("Nd_", 0) != 0)
    {
        scripted::reset();
        scripted::setNodes(smallCamera());
        scripted::setImageFormat(64, 48, scripted::kMono8);
        if (!fault.operation.empty() && fault.call == kEveryCall) {
            scripted::failAlways(fault.operation, fault.status);
        } else if (!fault.operation.empty()) {
            scripted::failCall(fault.operation, fault.status, fault.call);
        }
    }

    /// What is wrong; nothing if the session went as it must.
    QStringList run();
    /// The operations that were called, in order, a list for each step; the first one holds those of the start.
    [[nodiscard]] const std::vector<std::vector<std::string>>& calls() const { return m_calls; }

private:
    using Step = std::pair<const char*, std::function<bool(ScriptedSession&)>>;

    void perform(ScriptedSession& session, WindowModel& model, const Step& step);
    [[nodiscard]] bool faultFree() const { return m_fault.operation.empty(); }
    [[nodiscard]] bool failsForever(std::initializer_list<const char*> operations) const;
    bool unplug(ScriptedSession& session, WindowModel& model) const;
    void noteCalls();

    Fault m_fault;
    QStringList m_wrong;
    std::vector<std::vector<std::string>> m_calls;
    std::size_t m_notedCalls = 0;
    bool m_valuesComparable; // a read that failed leaves its row as it is until the next opening
};

bool Session::failsForever(std::initializer_list<const char*> operations) const
{
    return m_fault.call == kEveryCall &&
           std::any_of(operations.begin(), operations.end(),
                       [this](const char* operation) { return m_fault.operation == operation; });
}

bool Session::unplug(ScriptedSession& session, WindowModel& model) const
{
    // Only a running stream notices the removal, and only where there is a signal for it.
    const bool noticed = scripted::streaming() && !failsForever({"Sys_WaitForSignal", "Sys_CreateSignal"}) &&
                         !(m_fault.operation == "Sys_CreateSignal" && m_fault.call <= 1);
    if (noticed)
        model.expectRemoval();
    scripted::unplug();
    if (!noticed)
        return session.trigger("actionClose");
    return QTest::qWaitFor([&] { return session.driver().enabled("actionOpen"); }, kPatienceMs);
}

void Session::perform(ScriptedSession& session, WindowModel& model, const Step& step)
{
    const bool done = step.second(session);
    handleEvents();
    const auto wrong = [&](const QString& what) { m_wrong << QString("after \"%1\": %2").arg(step.first, what); };
    if (faultFree() && !done)
        wrong("it was not possible");
    for (const QString& difference : model.check())
        wrong(difference);
    for (const QString& row : session.wrongRows() + (m_valuesComparable ? session.wrongValues() : QStringList()))
        wrong(row);
}

void Session::noteCalls()
{
    std::vector<std::string>& noted = m_calls.emplace_back();
    for (const scripted::Call& call : scripted::callsFrom(m_notedCalls))
        noted.push_back(call.operation);
    m_notedCalls += noted.size();
}

QStringList Session::run()
{
    ScriptedSession session;
    WindowModel model(session.driver());
    // How many images find their buffer busy, because it stays locked, depends on the machine.
    if (m_fault.operation == "Strm_UnlockBuffer")
        model.compareOnlyFormOfLog();
    const auto noImages = [this] {
        return failsForever({"Strm_GetCurrentBufferIndex", "Strm_LockBuffer", "GetCamIndexFromCamHandle"}) &&
               scripted::count(m_fault.operation) > kCallsOfOtherThreads;
    };
    const auto showImage = [&](ScriptedSession& s) { return s.showImage(noImages); };
    const auto trigger = [](const char* action) { return [action](ScriptedSession& s) { return s.trigger(action); }; };
    const auto edit = [](const char* feature, const char* text = "") {
        return [feature, text](ScriptedSession& s) { return s.edit(feature, text); };
    };
    const auto open = [](ScriptedSession& s) { return s.open(); };

    const std::vector<Step> steps = {
        {"open", open},
        {"browse",
         [](ScriptedSession& s) {
             static_cast<void>(s.editor("ImageFormatControl"));
             return s.editor("Label") != nullptr;
         }},
        {"edit a string", edit("Label", "north")},
        {"edit a boolean", edit("Mirror")},
        {"edit an integer by its slider", edit("Height", "32")},
        {"edit an integer", edit("Count", "7")},
        {"edit a float by its slider", edit("ExposureTime", "50")},
        {"edit a float", edit("Delay", "2.5")},
        {"execute a command", edit("Reset")},
        {"switch the trigger on", edit("TriggerMode")},
        {"choose the software trigger", edit("TriggerSource")},
        {"start", trigger("actionStart")},
        {"image", showImage},
        {"error in a callback",
         [&model](ScriptedSession&) {
             if (!scripted::deliverError(0x2A))
                 return false;
             model.expectCallbackLine("CallBackErrorImage. (status = 0x2A)");
             return true;
         }},
        {"trigger", trigger("actionSoftwareTrigger")},
        {"pause", trigger("actionPause")},
        {"snapshot", [](ScriptedSession& s) { return s.snapshot(); }},
        {"go on", trigger("actionPause")},
        {"next image", showImage},
        {"zoom", trigger("actionZoomIn")},
        {"stop", trigger("actionStop")},
        {"start again", trigger("actionStart")},
        {"unplug", [&](ScriptedSession& s) { return unplug(s, model); }},
        {"plug in and open again",
         [this, &open](ScriptedSession& s) {
             m_valuesComparable |= m_fault.call != kEveryCall && scripted::count(m_fault.operation) >= m_fault.call;
             scripted::plugIn();
             return open(s);
         }},
        {"refresh",
         [](ScriptedSession& s) {
             if (!s.features())
                 return false;
             s.features()->updateAllFeatures(true);
             return true;
         }},
        {"start after the removal", trigger("actionStart")},
    };
    noteCalls();
    for (const Step& step : steps) {
        perform(session, model, step);
        noteCalls();
    }
    session.exit();
    if (!faultFree() && scripted::count(m_fault.operation) < std::max(m_fault.call, 1))
        m_wrong << "the call that fails was never made";
    for (const QString& complaint : unreleased(scripted::calls()))
        m_wrong << "after the exit: " + complaint;
    if (!QApplication::allWidgets().isEmpty())
        m_wrong << QString("after the exit: %1 widgets are left").arg(QApplication::allWidgets().size());
    noteCalls();
    return m_wrong;
}

// --- The matrix -----------------------------------------------------------------------------------------------------

class Matrix {
public:
    /// Runs a session without a fault, which tells the calls, and learns what the process holds after it.
    [[nodiscard]] bool prepare();
    void runCase(const Fault& fault);
    void runAll(bool everyStatus);
    [[nodiscard]] bool report() const;

private:
    [[nodiscard]] std::vector<Fault> faults(bool everyStatus) const;

    std::vector<std::vector<std::string>> m_calls; // of each step
    process::Held m_atRest;
    int m_cases = 0;
    int m_failed = 0;
    QElapsedTimer m_timer;
};

bool Matrix::prepare()
{
    m_timer.start();
    // The first session loads what the toolkit loads once.
    for (int round = 0; round < 2; ++round) {
        Session session{Fault{}};
        const QStringList wrong = session.run();
        for (const QString& line : wrong)
            std::printf("without a fault, %s\n", qPrintable(line));
        if (!wrong.isEmpty())
            return false;
        m_calls = session.calls();
    }
    m_atRest = process::held();
    return true;
}

std::vector<Fault> Matrix::faults(bool everyStatus) const
{
    std::vector<Fault> faults;
    std::size_t turn = 0;
    const auto add = [&](const std::string& operation, int call) {
        if (everyStatus) {
            for (const Orvo::CAM_API_STATUS status : kStatuses)
                faults.push_back({operation, call, status});
        } else {
            faults.push_back({operation, call, kStatuses[turn % kStatuses.size()]});
        }
        ++turn;
    };
    std::map<std::string, int> before; // the step
    for (const std::vector<std::string>& step : m_calls) {
        std::map<std::string, int> calls;
        for (const std::string& operation : step)
            ++calls[operation];
        for (const auto& [operation, count] : calls) {
            if (kOfOtherThreads.count(operation) != 0) {
                before[operation] = 0;
                continue;
            }
            const int chosen = static_cast<int>(turn) % count + 1;
            for (int call = everyStatus ? 1 : chosen; call <= (everyStatus ? count : chosen); ++call)
                add(operation, before[operation] + call);
            before[operation] += count;
        }
    }
    for (const auto& [operation, count] : before) {
        for (int call = 1; kOfOtherThreads.count(operation) != 0 && call <= kCallsOfOtherThreads; ++call)
            add(operation, call);
        add(operation, kEveryCall);
    }
    return faults;
}

void Matrix::runCase(const Fault& fault)
{
    const QByteArray name = "in the case " + fault.text().toLatin1() + '\n';
    std::copy_n(name.constData(), std::min<std::size_t>(static_cast<std::size_t>(name.size()) + 1, runningCase.size()),
                runningCase.begin());
    ++m_cases;
    Session session(fault);
    QStringList wrong = session.run();
    const process::Held held = process::heldWithin(m_atRest);
    if (held.threads > m_atRest.threads || held.descriptors > m_atRest.descriptors) {
        wrong << QString("after the exit: %1 threads and %2 descriptors instead of %3 and %4")
                     .arg(held.threads)
                     .arg(held.descriptors)
                     .arg(m_atRest.threads)
                     .arg(m_atRest.descriptors);
    }
    if (wrong.isEmpty())
        return;
    ++m_failed;
    for (const QString& line : wrong)
        std::printf("%s: %s\n", qPrintable(fault.text()), qPrintable(line));
    std::fflush(stdout);
}

void Matrix::runAll(bool everyStatus)
{
    for (const Fault& fault : faults(everyStatus))
        runCase(fault);
}

bool Matrix::report() const
{
    std::printf("fault matrix: %d cases, %d wrong, %lld s\n", m_cases, m_failed,
                static_cast<long long>(m_timer.elapsed() / 1000));
    return m_failed == 0;
}

} // namespace

int main(int argc, char** argv)
{
    for (const int signal : {SIGSEGV, SIGABRT, SIGFPE, SIGTERM})
        std::signal(signal, lastWords);
    const AttackApplication application(argc, argv);
    Matrix matrix;
    if (!matrix.prepare())
        return EXIT_FAILURE;
    if (argc == 4) {
        matrix.runCase(
            {argv[1], std::atoi(argv[2]), static_cast<Orvo::CAM_API_STATUS>(std::strtoul(argv[3], nullptr, 10))});
    } else {
        matrix.runAll(argc == 2 && std::string(argv[1]) == "--all");
    }
    return matrix.report() ? EXIT_SUCCESS : EXIT_FAILURE;
}

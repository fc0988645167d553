#include "tests/attack/RandomUser.h"

#include "display/DispThread.h"
#include "display/ImageView.h"
#include "features/view/FeatureView.h"

#include <QApplication>
#include <QTextDocument>
#include <QTextEdit>

#include <ctime>
#include <utility>

namespace {

constexpr int kSessionActions = 250; // on average, until a new window takes over
constexpr int kTooManyLogLines = 300;

// What a window may hold beyond what the program holds without one.
constexpr int kMostThreads = 8;
constexpr int kMostDescriptors = 40;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr double kLongestStallMs = 0; // not measured
#else
constexpr double kLongestStallMs = 200; // processor time; long form only, because cache contention adds to it
#endif

double processorMs()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

} // namespace

RandomUser::RandomUser(const Options& options)
    : m_options(options)
    , m_without(process::held())
{
}

RandomUser::~RandomUser()
{
    if (m_session)
        m_session->exit();
}

void RandomUser::newWindow()
{
    beforeWindow();
    m_session = std::make_unique<ViewerSession>();
    afterWindow();
    QApplication::setActiveWindow(&m_session->driver().window());
}

QStringList RandomUser::endWindow()
{
    if (!m_session)
        return {};
    endOfWindow();
    m_session->exit();
    m_session.reset();
    QStringList wrong = leftovers();
    if (const auto left = QApplication::allWidgets(); !left.isEmpty()) {
        wrong << QString("%1 widgets outlive the window, one of them a %2")
                     .arg(left.size())
                     .arg(left.first()->metaObject()->className());
    }
    return wrong;
}

QStringList RandomUser::finish()
{
    std::printf("without camera %d actions, with one %d, with a stream %d\n", m_actions[0], m_actions[1], m_actions[2]);
    return endWindow() + AttackApplication::takeWarnings();
}

int RandomUser::displayThreads()
{
    return m_session->driver().window().findChildren<DispThread*>().size();
}

QStringList RandomUser::invariants()
{
    QStringList wrong = wrongState() + m_session->wrongRows() + AttackApplication::takeWarnings();
    ++m_actions[displayThreads() > 0 ? 2 : m_session->features() != nullptr ? 1 : 0];
    const MainWindow& window = m_session->driver().window();
    if (displayThreads() > 1)
        wrong << QString("%1 display threads").arg(displayThreads());
    if (window.findChildren<FeatureView*>().size() > 1)
        wrong << QString("%1 feature browsers").arg(window.findChildren<FeatureView*>().size());
    if (window.findChildren<ImageView*>().size() > 1)
        wrong << QString("%1 image views").arg(window.findChildren<ImageView*>().size());
    const process::Held held = process::held();
    if (held.threads > m_without.threads + kMostThreads)
        wrong << QString("%1 threads").arg(held.threads);
    if (held.descriptors > m_without.descriptors + kMostDescriptors)
        wrong << QString("%1 descriptors").arg(held.descriptors);
    return wrong;
}

QStringList RandomUser::act(int number)
{
    std::seed_seq seeds{m_options.seed, static_cast<std::uint32_t>(number)};
    std::vector<std::uint32_t> seed(2);
    seeds.generate(seed.begin(), seed.end());
    m_random.seed(seed[0]);
    m_dialogUser.begin(seed[1]);

    QStringList wrong;
    if (!m_session || draw(kSessionActions) == 0 || !m_session->driver().window().isVisible()) {
        wrong = endWindow();
        newWindow();
    }
    std::vector<Action> actions = windowActions();
    for (Action& action : cameraActions())
        actions.push_back(std::move(action));
    int total = 0;
    for (const Action& action : actions)
        total += action.weight;
    int at = static_cast<int>(draw(static_cast<std::uint32_t>(total)));
    auto chosen = actions.begin();
    while (at >= chosen->weight)
        at -= (chosen++)->weight;
    if (m_options.prints)
        std::printf("%d %s\n", number, chosen->name);
    const double before = processorMs();
    if (m_session->features() == nullptr && draw(2) == 0) {
        openCamera();
        handleEvents();
        wrong << invariants(); // before the camera changes
    }
    chosen->perform();
    handleEvents();
    const double stall = processorMs() - before;
    if (m_options.judgesStalls && kLongestStallMs > 0 && stall > kLongestStallMs)
        wrong << QString("%1 ms of processor time").arg(stall);
    wrong << invariants();
    if (m_session->driver().child<QTextEdit>("messageLogEdit")->document()->blockCount() > kTooManyLogLines)
        m_session->driver().clearLog();
    return wrong;
}

#include "tests/attack/RandomUser.h"

#include "app/MainState.h"
#include "display/DispThread.h"
#include "display/ImageView.h"
#include "features/view/FeatureView.h"

#include <QApplication>
#include <QTextDocument>
#include <QTextEdit>

#include <ctime>

namespace {

constexpr int kSessionActions = 250; // on average, until a new window takes over
constexpr int kTooManyLogLines = 300;

// What a window may hold beyond what the program holds without one.
constexpr int kMostThreads = 8;
constexpr int kMostDescriptors = 24;

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

RandomUser::RandomUser(std::uint32_t seed, bool prints, bool judgesStalls)
    : m_seed(seed)
    , m_prints(prints)
    , m_judgesStalls(judgesStalls)
    , m_without(process::held())
{
    newWindow();
}

RandomUser::~RandomUser()
{
    static_cast<void>(endWindow());
}

void RandomUser::newWindow()
{
    scripted::reset();
    scripted::setCameras(std::vector<scripted::CameraSpec>(2));
    m_session = std::make_unique<ViewerSession>();
    m_model = std::make_unique<WindowModel>(m_session->driver());
    m_model->compareOnlyFormOfLog();
    QApplication::setActiveWindow(&m_session->driver().window());
}

QStringList RandomUser::endWindow()
{
    if (!m_session)
        return {};
    m_model.reset();
    m_session->exit();
    m_session.reset();
    QStringList wrong;
    if (const auto left = QApplication::allWidgets(); !left.isEmpty())
        wrong << QString("%1 widgets outlive the window, one of them a %2")
                     .arg(left.size())
                     .arg(left.first()->metaObject()->className());
    if (scripted::streaming())
        wrong << "the stream outlives the window";
    return wrong;
}

QStringList RandomUser::finish()
{
    std::printf("without camera %d actions, with one %d, with a stream %d\n", m_actionsInState[MAIN_STATE_IDLE],
                m_actionsInState[MAIN_STATE_OPENED], m_actionsInState[MAIN_STATE_ACQUIRING]);
    return endWindow();
}

QStringList RandomUser::invariants()
{
    QStringList wrong = m_model->check();
    m_model->forgetCalls();
    ++m_actionsInState[m_model->state()];
    const MainWindow& window = m_session->driver().window();
    const bool open = m_model->state() >= MAIN_STATE_OPENED;
    if (window.findChildren<DispThread*>().size() != (m_model->state() == MAIN_STATE_ACQUIRING ? 1 : 0))
        wrong << QString("%1 display threads in state %2")
                     .arg(window.findChildren<DispThread*>().size())
                     .arg(m_model->state());
    if (window.findChildren<FeatureView*>().size() != (open ? 1 : 0))
        wrong << QString("%1 feature browsers").arg(window.findChildren<FeatureView*>().size());
    if (window.findChildren<ImageView*>().size() > 1)
        wrong << QString("%1 image views").arg(window.findChildren<ImageView*>().size());
    wrong << m_session->wrongRows(false);
    const process::Held held = process::held();
    if (held.threads > m_without.threads + kMostThreads)
        wrong << QString("%1 threads").arg(held.threads);
    if (held.descriptors > m_without.descriptors + kMostDescriptors)
        wrong << QString("%1 descriptors").arg(held.descriptors);
    return wrong;
}

QStringList RandomUser::act(int number)
{
    struct Choice {
        int weight;
        const char* name;
        Action action;
    };
    static const std::vector<Choice> choices = {
        {18, "trigger an action", &RandomUser::triggerAction},
        {6, "open", &RandomUser::openCamera},
        {14, "key", &RandomUser::pressKey},
        {14, "mouse", &RandomUser::click},
        {6, "wheel", &RandomUser::turnWheelAnywhere},
        {5, "layout", &RandomUser::changeLayout},
        {6, "tool", &RandomUser::useTool},
        {12, "edit", &RandomUser::edit},
        {4, "leave an editor open", &RandomUser::leaveEditorOpen},
        {12, "images", &RandomUser::deliver},
        {8, "change the camera", &RandomUser::changeCamera},
        {3, "plug", &RandomUser::plug},
        {6, "fail", &RandomUser::fail},
        {4, "heal", &RandomUser::heal},
        {3, "wait", &RandomUser::wait},
    };
    int total = 0;
    for (const Choice& choice : choices)
        total += choice.weight;

    std::seed_seq seeds{m_seed, static_cast<std::uint32_t>(number)};
    std::vector<std::uint32_t> seed(2);
    seeds.generate(seed.begin(), seed.end());
    m_random.seed(seed[0]);
    m_dialogUser.begin(seed[1]);

    QStringList wrong;
    if (draw(kSessionActions) == 0 || !m_session->driver().window().isVisible()) {
        wrong = endWindow();
        newWindow();
    }
    int at = static_cast<int>(draw(static_cast<std::uint32_t>(total)));
    auto choice = choices.begin();
    while (at >= choice->weight)
        at -= (choice++)->weight;
    if (m_prints)
        std::printf("%d %s\n", number, choice->name);
    const double before = processorMs();
    if (m_model->state() < MAIN_STATE_OPENED && draw(2) == 0) {
        openHealthyCamera(); // otherwise most actions would find no camera
        handleEvents();
        wrong << invariants(); // before the camera changes
    }
    (this->*choice->action)();
    handleEvents();
    const double stall = processorMs() - before;
    // Opening and saving a file take what the toolkit takes for their dialogs.
    if (m_judgesStalls && kLongestStallMs > 0 && stall > kLongestStallMs)
        wrong << QString("%1 ms of processor time").arg(stall);
    if (m_session->driver().child<QTextEdit>("messageLogEdit")->document()->blockCount() > kTooManyLogLines)
        m_session->driver().clearLog();
    return wrong + invariants();
}

// Ends a stream in every way while its images, errors and conversions are in progress:
//
//     shutdown_races [--rounds N] [--race NAME]
//
// In each round a camera thread delivers images, errors and busy buffers without pause, conversions take their time,
// images wait in the event queue, and an editor is open. Then the user stops, closes, leaves, or opens the next camera
// while the removal of the last one is queued; or the cable is pulled while features are read. The moment differs from
// round to round.

#include "display/DispThread.h"
#include "features/view/FeatureView.h"
#include "tests/attack/Process.h"
#include "tests/attack/ScriptedSession.h"
#include "tests/attack/WindowModel.h"
#include "tests/support/Patience.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTest>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

constexpr int kQuickRounds = 200;
constexpr int kRoundsOfAWindow = 10; // the n-th opening writes a callback's line n times
constexpr unsigned kLongestRoundSeconds = 300;

void sleepUs(std::uint32_t microseconds)
{
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

/// A camera that never rests; without a stream it delivers nothing.
class Camera {
public:
    Camera()
        : m_thread([this] {
            for (std::uint64_t frame = 1; !m_stop; ++frame) {
                static_cast<void>(scripted::deliverImage(frame, static_cast<std::uint8_t>(frame)));
                if (frame % 7 == 0)
                    static_cast<void>(scripted::deliverError(19));
                if (frame % 11 == 0)
                    static_cast<void>(scripted::deliverBusy(3));
                sleepUs(200);
            }
        })
    {
    }
    ~Camera()
    {
        m_stop = true;
        m_thread.join();
    }
    Q_DISABLE_COPY_MOVE(Camera)

private:
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

class Races {
public:
    /// Rounds of one race; false if something was wrong.
    bool run(const char* name, void (Races::*race)(), int rounds);

    void stop();
    void close();
    void unplug();
    void leave();
    void openNext();

private:
    void newWindow();
    void endWindow();
    void begin();
    /// Handles what is queued, and checks the window. No stream may be running.
    void check(const char* when);
    void wrong(const QString& what)
    {
        ++m_wrong;
        std::printf("%s, round %d: %s\n", m_name, m_round, qPrintable(what));
    }
    std::uint32_t draw(std::uint32_t below) { return static_cast<std::uint32_t>(m_random() % below); }

    const char* m_name = "";
    int m_round = 0;
    int m_wrong = 0;
    std::minstd_rand m_random;
    std::unique_ptr<ViewerSession> m_session;
    std::unique_ptr<WindowModel> m_model;
};

void Races::newWindow()
{
    scripted::reset();
    scripted::setNodes(smallCamera());
    scripted::setImageFormat(64, 48, scripted::kMono8);
    scripted::onConvImage([](void* destination, const void*, std::uint32_t width, std::uint32_t) {
        sleepUs(1000);
        *static_cast<std::uint32_t*>(destination) = width;
    });
    m_session = std::make_unique<ViewerSession>();
    m_model = std::make_unique<WindowModel>(m_session->driver());
    m_model->compareOnlyFormOfLog();
}

void Races::endWindow()
{
    m_model.reset();
    m_session->exit();
    m_session.reset();
    if (scripted::streaming() || scripted::lockedBuffers() != 0)
        wrong("the stream outlives the window");
    if (!QApplication::allWidgets().isEmpty())
        wrong(QString("%1 widgets outlive the window").arg(QApplication::allWidgets().size()));
}

void Races::begin()
{
    if (!m_session)
        newWindow();
    scripted::plugIn();
    if (!m_session->features() && !m_session->open())
        wrong("the camera does not open");
    if (!m_session->trigger("actionStart"))
        wrong("the stream does not start");
    if (auto* const editor = qobject_cast<QLineEdit*>(m_session->editor("Label"))) {
        editor->setText("not committed");
    } else {
        wrong("no editor");
    }
    // Either the events are handled, and images are shown; or they are not, and images wait.
    const std::uint32_t ms = draw(40);
    if (draw(2) == 0) {
        QTest::qWait(static_cast<int>(ms));
    } else {
        sleepUs(1000 * ms);
    }
    if (draw(4) == 0)
        m_session->features()->updateAllFeatures(true);
}

void Races::check(const char* when)
{
    // Images that are queued belong to a stream that is gone.
    bool shown = false;
    QObject receiver;
    QObject::connect(&m_session->driver().window(), &MainWindow::Update_Image, &receiver, [&shown] { shown = true; });
    handleEvents();
    if (shown)
        wrong(QString("%1: an image of the ended stream is shown").arg(when));
    const QStringList differences = m_model->check() + m_session->wrongRows();
    m_model->forgetCalls();
    for (const QString& difference : differences)
        wrong(QString("%1: %2").arg(when, difference));
    if (m_session->driver().window().findChild<DispThread*>())
        wrong(QString("%1: the display thread is left").arg(when));
    if (scripted::streaming() || scripted::lockedBuffers() != 0)
        wrong(QString("%1: the stream is left").arg(when));
}

void Races::stop()
{
    begin();
    static_cast<void>(m_session->trigger(draw(2) == 0 ? "actionStop" : "action_Menu_Stop"));
    check("after the stop");
    scripted::lateImage(1);
    scripted::lateError(19);
    check("after late deliveries");
}

void Races::close()
{
    begin();
    static_cast<void>(m_session->trigger("actionClose"));
    check("after the closing");
}

void Races::unplug()
{
    begin();
    const std::uint32_t delay = draw(3000);
    std::thread hand([delay] {
        sleepUs(delay);
        scripted::unplug();
    });
    while (draw(3) != 0)
        m_session->features()->updateAllFeatures(true);
    hand.join();
    if (!QTest::qWaitFor([this] { return m_session->driver().enabled("actionOpen"); }, kPatienceMs))
        wrong("the removal is not noticed");
    check("after the removal");
}

void Races::leave()
{
    begin();
    if (draw(3) == 0)
        scripted::unplug();
    endWindow();
    handleEvents();
}

void Races::openNext()
{
    begin();
    // The user closes the camera before or after the display thread notices the removal, which is still queued.
    scripted::unplug();
    sleepUs(draw(6000));
    static_cast<void>(m_session->trigger("actionClose"));
    scripted::plugIn();
    if (!m_session->open())
        wrong("the next camera does not open");
    check("with the next camera");
    if (!m_session->features())
        wrong("the removal of the last camera closes the next");
}

bool Races::run(const char* name, void (Races::*race)(), int rounds)
{
    m_name = name;
    m_wrong = 0;
    QElapsedTimer timer;
    timer.start();
    newWindow();
    endWindow();
    m_session.reset();
    std::thread([] {}).join(); // a sanitizer starts its own thread with the first one
    const process::Held before = process::held();
    {
        const Camera camera;
        for (m_round = 0; m_round < rounds; ++m_round) {
            alarm(kLongestRoundSeconds); // ends a program that hangs
            m_random.seed(static_cast<std::uint32_t>(m_round));
            (this->*race)();
            if (m_session && m_round % kRoundsOfAWindow == kRoundsOfAWindow - 1)
                endWindow();
        }
        if (m_session)
            endWindow();
    }
    const process::Held after = process::heldWithin(before);
    if (after.threads > before.threads || after.descriptors > before.descriptors) {
        wrong(QString("%1 threads and %2 descriptors too many")
                  .arg(after.threads - before.threads)
                  .arg(after.descriptors - before.descriptors));
    }
    std::printf("%s: %d rounds, %d wrong, %lld s\n", name, rounds, m_wrong,
                static_cast<long long>(timer.elapsed() / 1000));
    std::fflush(stdout);
    return m_wrong == 0;
}

} // namespace

int main(int argc, char** argv)
{
    const AttackApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int roundsAt = arguments.indexOf("--rounds");
    const int raceAt = arguments.indexOf("--race");
    const int rounds = roundsAt < 0 ? kQuickRounds : arguments.value(roundsAt + 1).toInt();
    const QString only = raceAt < 0 ? QString() : arguments.value(raceAt + 1);
    bool right = true;
    Races races;
    const auto run = [&](const char* name, void (Races::*race)()) {
        if (only.isEmpty() || only == name)
            right = races.run(name, race, rounds) && right;
    };
    run("stop", &Races::stop);
    run("close", &Races::close);
    run("unplug", &Races::unplug);
    run("exit", &Races::leave);
    run("discovery", &Races::openNext);
    return right ? EXIT_SUCCESS : EXIT_FAILURE;
}

#pragma once

#include "tests/attack/DialogUser.h"
#include "tests/attack/Process.h"
#include "tests/attack/ViewerSession.h"

#include <QPoint>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <random>
#include <vector>

/// A user who does anything, with a camera that does anything. Each action is drawn from the seed and its number alone,
/// so that any of them can be left out. Derived classes bring the camera.
class RandomUser {
public:
    struct Options {
        std::uint32_t seed = 1;
        bool prints = false;
        bool judgesStalls = false;
    };

    explicit RandomUser(const Options& options);
    virtual ~RandomUser();
    Q_DISABLE_COPY_MOVE(RandomUser)

    /// What is wrong after the action with this number.
    [[nodiscard]] QStringList act(int number);
    /// Ends the last window.
    [[nodiscard]] QStringList finish();

protected:
    struct Action {
        int weight;
        const char* name;
        std::function<void()> perform;
    };

    /// What the user does with the window.
    [[nodiscard]] std::vector<Action> windowActions();
    /// What else happens: with the camera, and with its features.
    [[nodiscard]] virtual std::vector<Action> cameraActions() = 0;
    /// Precedes every second action without a camera; most actions would find none otherwise.
    virtual void openCamera() = 0;

    virtual void beforeWindow() {}
    virtual void afterWindow() {}
    virtual void endOfWindow() {}
    /// What should have gone with the last window.
    [[nodiscard]] virtual QStringList leftovers() { return {}; }
    /// What is wrong besides what holds with every camera.
    [[nodiscard]] virtual QStringList wrongState() = 0;

    [[nodiscard]] ViewerSession& session() { return *m_session; }
    [[nodiscard]] int displayThreads();
    [[nodiscard]] std::minstd_rand& chance() { return m_random; }
    std::uint32_t draw(std::uint32_t below) { return static_cast<std::uint32_t>(m_random() % below); }
    template <typename T> const T& pick(const std::vector<T>& from)
    {
        return from[draw(static_cast<std::uint32_t>(from.size()))];
    }
    void say(const QString& what)
    {
        if (m_options.prints)
            std::printf("    %s\n", qPrintable(what));
    }

private:
    void newWindow();
    QStringList endWindow();
    [[nodiscard]] QStringList invariants();

    [[nodiscard]] QWidget* anyWidget();
    [[nodiscard]] static QPoint anyPoint(const QWidget& widget, std::uint32_t random);
    void triggerAction();
    void pressKey();
    void click();
    void turnWheelAnywhere();
    void changeLayout();
    void useTool();
    void triggerOpen();
    void wait();

    const Options m_options;
    std::minstd_rand m_random;
    QTemporaryDir m_folder;
    DialogUser m_dialogUser{m_folder.path()};
    process::Held m_without;
    std::unique_ptr<ViewerSession> m_session; // from the first action on
    int m_actions[3] = {};                    // without a camera, with one, with a stream
};

/// The kind of user, which the source of its camera defines: the actions of the quick form, and the user.
extern const int kQuickActions;
[[nodiscard]] std::unique_ptr<RandomUser> makeRandomUser(const RandomUser::Options& options);

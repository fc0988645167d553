#pragma once

#include "tests/attack/DialogUser.h"
#include "tests/attack/Process.h"
#include "tests/attack/ViewerSession.h"
#include "tests/attack/WindowModel.h"

#include <QPoint>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <vector>

/// A user who does anything, with a camera that does anything. Each action is drawn from the seed and its number alone,
/// so that any of them can be left out.
class RandomUser {
public:
    RandomUser(std::uint32_t seed, bool prints, bool judgesStalls);
    ~RandomUser();
    Q_DISABLE_COPY_MOVE(RandomUser)

    /// What is wrong after the action with this number.
    [[nodiscard]] QStringList act(int number);
    /// Ends the last window.
    [[nodiscard]] QStringList finish();

private:
    using Action = void (RandomUser::*)();

    void newWindow();
    QStringList endWindow();
    [[nodiscard]] QStringList invariants();

    std::uint32_t draw(std::uint32_t below) { return static_cast<std::uint32_t>(m_random() % below); }
    template <typename T> const T& pick(const std::vector<T>& from)
    {
        return from[draw(static_cast<std::uint32_t>(from.size()))];
    }
    void say(const QString& what)
    {
        if (m_prints)
            std::printf("    %s\n", qPrintable(what));
    }
    [[nodiscard]] QWidget* anyWidget();
    [[nodiscard]] static QPoint anyPoint(const QWidget& widget, std::uint32_t random);

    void triggerAction();
    void openCamera();
    void openHealthyCamera();
    void pressKey();
    void click();
    void turnWheelAnywhere();
    void changeLayout();
    void useTool();
    void edit();
    void leaveEditorOpen();
    void deliver();
    void changeCamera();
    void plug();
    void fail();
    void heal();
    void wait();

    std::uint32_t m_seed;
    bool m_prints;
    bool m_judgesStalls;
    std::minstd_rand m_random;
    QTemporaryDir m_folder;
    DialogUser m_dialogUser{m_folder.path()};
    process::Held m_without;
    std::unique_ptr<ViewerSession> m_session;
    std::unique_ptr<WindowModel> m_model;
    std::uint64_t m_frame = 0;
    std::map<int, int> m_actionsInState;
};

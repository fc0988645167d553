// The random user with the camera libraries and a GigE camera that comes, hangs and goes.

#include "features/item/GenAPINodeItem.h"
#include "features/view/FeatureView.h"
#include "tests/attack/RandomUser.h"
#include "tests/cameralibs/devices/transport/Transports.h"
#include "tests/cameralibs/transport/ChildProcess.h"
#include "tests/support/EnableTable.h"
#include "tests/support/Patience.h"

#include <QTest>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace {

class GigeCameraUser : public RandomUser {
public:
    using RandomUser::RandomUser;

protected:
    std::vector<Action> cameraActions() override
    {
        return {
            {12, "edit", [this] { edit(); }},
            {4, "leave an editor open", [this] { leaveEditorOpen(); }},
            {12, "images", [this] { QTest::qWait(static_cast<int>(draw(200))); }},
            {6, "plug in", [this] { plugIn(); }},
            {6, "pull", [this] { pull(); }},
            {1, "hang", [this] { hang(); }},
        };
    }

    void openCamera() override
    {
        if (draw(8) != 0)
            plugIn();
        static_cast<void>(session().open());
        if (draw(3) != 0)
            static_cast<void>(session().trigger("actionStart"));
    }

    QStringList leftovers() override
    {
        return QTest::qWaitFor([] { return transports().empty(); }, kPatienceMs)
                   ? QStringList()
                   : QStringList("a transport outlives the window");
    }

    QStringList wrongState() override
    {
        if (m_hanging > 0 && --m_hanging == 0 && m_camera)
            m_camera->resume();
        QStringList wrong = wrongActions() + std::exchange(m_unnoticed, {});
        // One has the camera, and one that a search started may not have ended yet.
        if (transports().size() > 2)
            wrong << QString("%1 transports").arg(transports().size());
        return wrong;
    }

private:
    /// The actions whose state does not depend on how the window came to it.
    QStringList wrongActions()
    {
        const std::size_t state = displayThreads() > 0 ? 4 : session().features() != nullptr ? 2 : 0;
        QStringList wrong;
        for (const EnableRow& row : kEnableTable) {
            const std::string_view rule = row.states[state];
            const bool enabled = session().driver().enabled(row.action);
            if ((rule == "on" && !enabled) || (rule == "off" && enabled))
                wrong << QString("%1 is %2").arg(row.action, enabled ? "on" : "off");
        }
        return wrong;
    }

    QString anyFeature()
    {
        const FeatureView* const view = session().features();
        if (view == nullptr || view->items().isEmpty())
            return {};
        const auto row = draw(static_cast<std::uint32_t>(view->items().size()));
        return view->items()[static_cast<int>(row)]->getNodeName();
    }

    void edit()
    {
        static const std::vector<QString> texts = {"0",  "1",   "-1",   "64",  "100", "640", "99999999999999999999",
                                                   "On", "Off", "1e10", "0x5", "",    "nan", "\u00b5"};
        const QString feature = anyFeature();
        const QString text = pick(texts);
        say(feature + " = " + text);
        if (!feature.isEmpty())
            static_cast<void>(session().edit(feature, text));
    }

    void leaveEditorOpen()
    {
        const QString feature = anyFeature();
        say(feature);
        if (!feature.isEmpty())
            static_cast<void>(session().editor(feature));
    }

    void plugIn()
    {
        if (m_camera)
            return;
        static const std::vector<std::vector<std::string>> cameras = {
            {"arv-fake-gv-camera-0.8", "-i", "127.0.0.1"},
            {"arv-fake-gv-camera-0.8", "-i", "127.0.0.1", "-r", "5"}, // loses packets
            {GIGE_CAMERA},
        };
        const std::vector<std::string>& camera = pick(cameras);
        say(QString::fromStdString(camera.front() + (camera.size() > 3 ? " that loses packets" : "")));
        m_camera = std::make_unique<ChildProcess>(camera);
        QTest::qWait(100); // it has to start before it can be found
    }

    /// Sometimes acts on, sometimes waits until the window has noticed.
    void pull()
    {
        m_camera.reset();
        m_hanging = 0;
        if (draw(4) == 0 || displayThreads() == 0)
            return;
        const bool noticed = QTest::qWaitFor([this] { return displayThreads() == 0; }, kPatienceMs);
        if (!noticed || !session().driver().log().contains("A camera has been Removed."))
            m_unnoticed << "the window has not noticed the removal";
    }

    void hang()
    {
        if (!m_camera)
            return;
        m_camera->stop();
        m_hanging = static_cast<int>(draw(4)) + 1;
    }

    std::unique_ptr<ChildProcess> m_camera;
    QStringList m_unnoticed;
    int m_hanging = 0; // the number of actions until it goes on
};

} // namespace

const int kQuickActions = 100;

std::unique_ptr<RandomUser> makeRandomUser(const RandomUser::Options& options)
{
    return std::make_unique<GigeCameraUser>(options);
}

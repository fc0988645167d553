// The random user with a scripted camera, whose calls fail and whose nodes change.

#include "app/MainState.h"
#include "features/view/FeatureView.h"
#include "tests/attack/RandomCamera.h"
#include "tests/attack/RandomUser.h"
#include "tests/attack/WindowModel.h"
#include "tests/support/ScriptedCamera.h"

#include <QTest>

#include <optional>

namespace {

class ScriptedCameraUser : public RandomUser {
public:
    using RandomUser::RandomUser;

protected:
    std::vector<Action> cameraActions() override
    {
        return {
            {12, "edit", [this] { edit(); }},         {4, "leave an editor open", [this] { leaveEditorOpen(); }},
            {12, "images", [this] { deliver(); }},    {8, "change the camera", [this] { changeCamera(); }},
            {3, "plug", [this] { plug(); }},          {6, "fail", [this] { fail(); }},
            {4, "heal", [] { scripted::healAll(); }},
        };
    }
    void openCamera() override;

    void beforeWindow() override
    {
        scripted::reset();
        scripted::setCameras(std::vector<scripted::CameraSpec>(2));
    }
    void afterWindow() override
    {
        m_model.emplace(session().driver());
        m_model->compareOnlyFormOfLog();
    }
    void endOfWindow() override { m_model.reset(); }
    QStringList leftovers() override
    {
        return scripted::streaming() ? QStringList("the stream outlives the window") : QStringList();
    }
    QStringList wrongState() override
    {
        QStringList wrong = m_model->check();
        m_model->forgetCalls();
        const int state = m_model->state();
        if (displayThreads() != (state == MAIN_STATE_ACQUIRING ? 1 : 0))
            wrong << QString("%1 display threads in state %2").arg(displayThreads()).arg(state);
        if ((session().features() != nullptr) != (state >= MAIN_STATE_OPENED))
            wrong << QString("no feature browser, or one too many, in state %1").arg(state);
        return wrong;
    }

private:
    void edit();
    void leaveEditorOpen();
    void deliver();
    void changeCamera();
    void plug();
    void fail();

    std::optional<WindowModel> m_model;
    std::uint64_t m_frame = 0;
};

void ScriptedCameraUser::openCamera()
{
    scripted::healAll();
    scripted::setCameras(std::vector<scripted::CameraSpec>(2));
    static_cast<void>(session().open());
    if (draw(2) == 0)
        static_cast<void>(session().trigger("actionStart"));
}

void ScriptedCameraUser::edit()
{
    if (!session().features())
        return;
    const QString feature = randomFeature(chance());
    const QString text = randomText(chance());
    say(feature + " = " + text);
    static_cast<void>(session().edit(feature, text));
}

void ScriptedCameraUser::leaveEditorOpen()
{
    if (!session().features())
        return;
    const QString feature = randomFeature(chance());
    say(feature);
    static_cast<void>(session().editor(feature));
}

void ScriptedCameraUser::deliver()
{
    for (std::uint32_t left = draw(4) + 1; left > 0; --left) {
        switch (draw(8)) {
        case 0:
            static_cast<void>(scripted::deliverError(draw(0x10000)));
            break;
        case 1:
            static_cast<void>(scripted::deliverBusy(draw(8)));
            break;
        case 2:
            m_frame += draw(100000);
            [[fallthrough]];
        default:
            ++m_frame;
            static_cast<void>(
                scripted::deliverImage(m_frame, static_cast<std::uint8_t>(m_frame), draw(6) == 0 ? 19 : 0));
        }
    }
    QTest::qWait(static_cast<int>(draw(2)) * 30); // a period of the display, or none
}

void ScriptedCameraUser::changeCamera()
{
    const QString what = changeRandomly(chance());
    say(what);
}

void ScriptedCameraUser::plug()
{
    switch (draw(4)) {
    case 0:
        say("unplug");
        scripted::unplug();
        break;
    case 1: {
        const std::uint32_t count = draw(4);
        say(QString("%1 cameras").arg(count));
        if (m_model->state() < MAIN_STATE_OPENED)
            scripted::setCameras(std::vector<scripted::CameraSpec>(count));
        break;
    }
    default:
        say("plug in");
        scripted::plugIn();
    }
}

void ScriptedCameraUser::fail()
{
    // Not those that release something: after such a failure the scripted camera would keep what the viewer gave back.
    static const std::vector<const char*> operations = {"Sys_GetNumOfCameras",
                                                        "Cam_GetInformation",
                                                        "Sys_CreateSignal",
                                                        "Cam_Open",
                                                        "GetCamWidth",
                                                        "GetCamHeight",
                                                        "GetCamPixelFormat",
                                                        "Strm_OpenSimple",
                                                        "Strm_SetCallbackImageAcquired",
                                                        "Strm_SetCallbackImageError",
                                                        "Strm_SetCallbackBufferBusy",
                                                        "Strm_Start",
                                                        "Strm_Stop",
                                                        "Strm_GetCurrentBufferIndex",
                                                        "Strm_LockBuffer",
                                                        "ConvImage",
                                                        "GetCamIndexFromCamHandle",
                                                        "GetCamTriggerMode",
                                                        "GetCamTriggerSource",
                                                        "ExecuteCamSoftwareTrigger",
                                                        "Sys_GetInformation",
                                                        "Misc_GetLastGenICamError",
                                                        "Nd_GetNode",
                                                        "Nd_GetNumOfFeatures",
                                                        "Nd_GetFeatureByIndex",
                                                        "Nd_GetType",
                                                        "Nd_GetName",
                                                        "Nd_GetAccessMode",
                                                        "Nd_GetVisibility",
                                                        "Nd_GetDescription",
                                                        "Nd_GetToolTip",
                                                        "Nd_GetRepresentation",
                                                        "Nd_GetUnit",
                                                        "Nd_GetIntValue",
                                                        "Nd_GetIntMin",
                                                        "Nd_GetIntMax",
                                                        "Nd_GetIntInc",
                                                        "Nd_GetFloatValue",
                                                        "Nd_GetFloatMin",
                                                        "Nd_GetFloatMax",
                                                        "Nd_GetFloatInc",
                                                        "Nd_GetFloatHasInc",
                                                        "Nd_GetBoolValue",
                                                        "Nd_GetStrValue",
                                                        "Nd_GetEnumStrValue",
                                                        "Nd_GetEnumIntValue",
                                                        "Nd_GetNumOfEnumEntries",
                                                        "Nd_GetEnumEntryByIndex",
                                                        "Nd_GetEnumEntryStrValue",
                                                        "Nd_SetIntValue",
                                                        "Nd_SetFloatValue",
                                                        "Nd_SetBoolValue",
                                                        "Nd_SetStrValue",
                                                        "Nd_SetEnumStrValue",
                                                        "Nd_SetEnumIntValue",
                                                        "Nd_CmdExecute"};
    static const std::vector<Orvo::CAM_API_STATUS> statuses = {1, 13, 19, 258, 2055, 0xFFFFFFFF};
    const char* const operation = pick(operations);
    const Orvo::CAM_API_STATUS status = pick(statuses);
    const int nth = static_cast<int>(draw(10));
    say(QString("%1, call %2, status %3").arg(operation).arg(nth).arg(status));
    if (nth == 0) {
        scripted::failAlways(operation, status);
    } else {
        scripted::failCall(operation, status, nth);
    }
}

} // namespace

const int kQuickActions = 2000;

std::unique_ptr<RandomUser> makeRandomUser(const RandomUser::Options& options)
{
    return std::make_unique<ScriptedCameraUser>(options);
}

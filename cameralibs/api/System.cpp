#include "cameralibs/api/System.h"

#include "cameralibs/base/AsciiField.h"
#include "cameralibs/base/Log.h"
#include "cameralibs/base/Outcome.h"
#include "cameralibs/devices/Device.h"
#include "cameralibs/genicam/EvaluationBudget.h"
#include "cameralibs/genicam/nodes/NodeOperations.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <new>

#include <pthread.h>

namespace cameralibs {

using namespace Orvo;

namespace {

/// How long closing waits for the camera to answer.
constexpr std::chrono::milliseconds kClosingLimit{700};

/// Processor time that reading and evaluating the description may take when a camera is opened.
constexpr std::chrono::milliseconds kOpeningLimit{2000};

/// The state of the library in this process.
struct Root {
    std::mutex mutex; ///< guards the next members
    std::shared_ptr<System> system;
    bool terminating = false;
    std::uint32_t layers = 0; ///< as given to the last initialize()
    bool inherited = false;   ///< the process was forked from one with a System, and has none of its own yet

    std::mutex providers; ///< serialises listing and opening devices and parsing descriptions; Aravis requires that
};

/// Never destroyed: a program may exit while cameras are open and threads still use them. Initialised at compile time,
/// so that no fork comes in between.
union KeptRoot {
    Root root;
    constexpr KeptRoot()
        : root()
    {
    }
    ~KeptRoot() {} // NOLINT(modernize-use-equals-default): that would be deleted
    KeptRoot(const KeptRoot&) = delete;
    KeptRoot& operator=(const KeptRoot&) = delete;
};
KeptRoot s_root;

Root& root()
{
    return s_root.root;
}

/// Runs in a forked process, which has the objects of its parent, but none of the threads that serve them and unlock
/// their mutexes. Destroying the objects would close the parent's cameras, so they are left as they are.
void leaveSystemToParent()
{
    Root& theRoot = root();
    const bool inherited = theRoot.inherited || (theRoot.system != nullptr && !theRoot.terminating);
    const std::uint32_t layers = theRoot.layers;
    new (&theRoot) Root;
    theRoot.inherited = inherited;
    theRoot.layers = layers;
    Stream::forgetCallback();
}

/// Registered when the library is loaded; 0 on success.
const int s_atFork = ::pthread_atfork(nullptr, nullptr, leaveSystemToParent);

/// To be called with the mutex locked. Most forked processes never use the library, so the System is made here.
const std::shared_ptr<System>& ownSystem()
{
    if (root().inherited) {
        root().system = std::make_shared<System>(root().layers);
        root().inherited = false;
    }
    return root().system;
}

// getenv() is safe here: nobody changes the environment while the library is initialised.
const char* environment(const char* variable)
{
    return std::getenv(variable); // NOLINT(concurrency-mt-unsafe)
}

const char* nameOf(CAM_LINK link)
{
    switch (link) {
    case CAM_LINK_USB3_VISION:
        return "USB3 Vision";
    case CAM_LINK_GIGE_VISION:
        return "GigE Vision";
    default:
        return "simulated";
    }
}

bool sameDevice(const DeviceInfo& a, const DeviceInfo& b)
{
    return a.link == b.link && a.id == b.id;
}

} // namespace

System::System(std::uint32_t layers)
{
    const bool usb = (layers & CAM_LAYER_USB3_VISION) != 0;
    const bool gige = (layers & CAM_LAYER_GIGE_VISION) != 0;
    if (usb || gige)
        m_providers.push_back(makeTransportProvider(usb, gige));
    if ((layers & CAM_LAYER_SIMULATED) == 0)
        return;
    m_providers.push_back(makeSimulatedProvider(environment("ORVO_SIMULATED_CAMERAS")));
}

System::~System() = default;

std::shared_ptr<System> System::current()
{
    const std::lock_guard lock(root().mutex);
    return root().terminating ? nullptr : ownSystem();
}

CAM_API_STATUS System::initialize(std::uint32_t layers)
{
    throwUnless(s_atFork == 0, CAM_API_STS_NO_MEMORY);
    const std::lock_guard lock(root().mutex);
    // Waiting for the termination could deadlock: it waits for callbacks, and this may be called from one.
    if (root().terminating)
        return CAM_API_STS_NOT_INITIALIZED;
    if (ownSystem() != nullptr)
        return CAM_API_STS_ALREADY_INITIALIZED;
    setLogLevel(environment("ORVO_CAMERA_LOG"));
    root().system = std::make_shared<System>(layers);
    root().layers = layers;
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS System::terminate()
{
    std::shared_ptr<System> system;
    {
        const std::lock_guard lock(root().mutex);
        if (ownSystem() == nullptr || root().terminating)
            return CAM_API_STS_NOT_INITIALIZED;
        root().terminating = true;
        system = root().system;
    }
    // Without the lock: shutting down waits for callbacks, which may call into the library.
    system->shutDown();
    const std::lock_guard lock(root().mutex);
    root().system = nullptr;
    root().terminating = false;
    return CAM_API_STS_SUCCESS;
}

std::uint32_t System::enumerate()
{
    const std::lock_guard providers(root().providers);
    throwUnless(!m_ending, CAM_API_STS_NOT_INITIALIZED);
    std::vector<Listed> found;
    for (const auto& provider : m_providers) {
        for (DeviceInfo& info : provider->enumerate())
            found.push_back({provider.get(), std::move(info)});
    }
    logText(Severity::info, {}, [&] {
        std::string text = "cameras found: " + std::to_string(found.size());
        for (const Listed& entry : found)
            text += std::string("; ") + entry.info.logName() + " (" + nameOf(entry.info.link) + ")";
        return text;
    });
    const auto count = static_cast<std::uint32_t>(found.size());
    {
        const std::lock_guard lock(m_listMutex);
        m_list = std::move(found);
        // A name found by the enumeration is newer than one read while the camera was open.
        for (const Listed& entry : m_list) {
            if (!entry.info.userName.empty())
                m_userNames.erase({entry.info.link, entry.info.id});
        }
    }
    for (const auto& camera : m_cameras.all())
        updateRecord(*camera);
    return count;
}

CAM_INFO System::record(std::uint32_t index) const
{
    return record(listed(index).info, index);
}

CAM_INFO System::record(const DeviceInfo& info, std::uint32_t index) const
{
    std::string userName = info.userName;
    {
        const std::lock_guard lock(m_listMutex);
        if (const auto name = m_userNames.find({info.link, info.id}); name != m_userNames.end())
            userName = name->second;
    }
    CAM_INFO record = {};
    record.link = info.link;
    setAsciiField(record.vendorName, info.vendor);
    setAsciiField(record.modelName, info.model);
    setAsciiField(record.serialNumber, info.serial);
    setAsciiField(record.userDefinedName, userName);
    record.cameraIndex = index;
    return record;
}

void System::updateRecord(Camera& camera) const
{
    std::uint32_t index = camera.indexWhenOpened();
    {
        const std::lock_guard lock(m_listMutex);
        const auto entry = std::find_if(m_list.begin(), m_list.end(),
                                        [&](const Listed& listed) { return sameDevice(listed.info, camera.info()); });
        if (entry != m_list.end())
            index = static_cast<std::uint32_t>(entry - m_list.begin());
    }
    camera.setRecord(record(camera.info(), index));
}

void System::openCamera(std::uint32_t index, CAM_SIGNAL_HANDLE removalSignal, CAM_HANDLE* handle)
{
    const Listed entry = listed(index);
    const std::lock_guard providers(root().providers);
    throwUnless(!m_ending, CAM_API_STS_NOT_INITIALIZED);
    throwUnless(!isOpen(entry.info), CAM_API_STS_ALREADY_OPENED);
    std::unique_ptr<Device> device;
    throwIfFailed(entry.provider->open(entry.info.id, device));

    std::shared_ptr<Signal> signal;
    if (removalSignal != 0) {
        signal = m_signals.find(removalSignal);
        throwUnless(signal != nullptr, CAM_API_STS_INVALID_EVENT_HANDLE);
    }
    throwUnless(handle != nullptr, CAM_API_STS_INVALID_PARAMETER);
    if (signal != nullptr)
        signal->clear();
    auto removal = std::make_shared<Removal>(std::move(signal));
    device->onRemoval([removal, name = entry.info.logName()](const std::string& reason) {
        if (removal->note())
            logText(Severity::warning, name, [&] { return "lost: " + reason; });
    });

    std::string xml;
    throwIfFailed(device->description(xml));
    EvaluationBudget budget(kOpeningLimit, &m_ending);
    budget.begin();
    const auto camera =
        std::make_shared<Camera>(index, device->info(), removal, std::move(device), readDescription(xml));
    rememberUserName(*camera);
    updateRecord(*camera);
    // The last program that controlled the camera may have been killed while it streamed. Such a camera would keep its
    // settings locked, and may go on sending to the port of that program.
    camera->stopAcquisition();
    camera->relax();
    throwUnless(m_cameras.add(camera->handle(), camera), CAM_API_STS_NOT_INITIALIZED);
    logText(Severity::info, camera->name(), [&] {
        return "opened; " + std::to_string(camera->description().size()) + " nodes in a description of " +
               std::to_string(xml.size()) + " bytes";
    });
    *handle = camera->handle();
}

bool System::closeCamera(CAM_HANDLE handle)
{
    std::shared_ptr<Camera> camera;
    {
        const std::lock_guard lock(m_closingMutex);
        camera = m_cameras.find(handle);
        if (camera == nullptr)
            return false;
        m_closing.push_back(camera);
        (void)m_cameras.take(handle);
    }
    close(*camera);
    log(Severity::info, camera->name(), "closed");
    const std::lock_guard lock(m_closingMutex);
    m_closing.erase(std::find(m_closing.begin(), m_closing.end(), camera));
    m_closed.notify_all();
    return true;
}

std::shared_ptr<Stream> System::openStream(const std::shared_ptr<Camera>& camera, std::uint32_t bufferCount)
{
    auto stream = std::make_shared<Stream>(camera);
    camera->attachStream(stream);
    try {
        stream->open(bufferCount);
        throwUnless(m_streams.add(stream->handle(), stream), CAM_API_STS_NOT_INITIALIZED);
        // Closing the camera removes the stream's handle, but may have looked for it before it was added.
        if (camera->closing()) {
            (void)m_streams.take(stream->handle());
            throw Failure(CAM_API_STS_INVALID_CAMERA_HANDLE);
        }
    } catch (...) {
        stream->close();
        camera->detachStream(*stream);
        throw;
    }
    return stream;
}

bool System::closeStream(CAM_STRM_HANDLE handle)
{
    const auto stream = m_streams.take(handle);
    if (stream == nullptr)
        return false;
    stream->camera().hurry(std::chrono::steady_clock::now() + kClosingLimit);
    stream->close();
    stream->camera().relax();
    stream->camera().detachStream(*stream);
    return true;
}

System::Listed System::listed(std::uint32_t index) const
{
    const std::lock_guard lock(m_listMutex);
    throwUnless(index < m_list.size(), CAM_API_STS_INVALID_CAMERA_INDEX);
    return m_list[index];
}

bool System::isOpen(const DeviceInfo& info) const
{
    const std::lock_guard lock(m_closingMutex);
    auto cameras = m_cameras.all();
    cameras.insert(cameras.end(), m_closing.begin(), m_closing.end());
    return std::any_of(cameras.begin(), cameras.end(), [&](const std::shared_ptr<Camera>& camera) {
        return camera->holdsDevice() && sameDevice(camera->info(), info);
    });
}

void System::rememberUserName(Camera& camera)
{
    const NodeId node = camera.description().find("DeviceUserID");
    if (node == kNoNode || camera.description().node(node).type != NODE_TYPE_STRING)
        return;
    try {
        std::string name;
        camera.evaluate([&](NodeMap& nodes) { name = readText(nodes, node); });
        const std::lock_guard lock(m_listMutex);
        m_userNames[{camera.info().link, camera.info().id}] = name;
    } catch (const Failure& failure) {
        // An unreadable user name does no harm, but a lost camera must be reported.
        if (failure.status() == CAM_API_STS_CAMERA_NOT_RESPONDING)
            throw;
    }
}

void System::close(Camera& camera) noexcept
{
    camera.closeBy(std::chrono::steady_clock::now() + kClosingLimit);
    if (const auto stream = camera.beginClosing(); stream != nullptr) {
        (void)m_streams.take(stream->handle());
        stream->close();
        camera.detachStream(*stream);
    }
    try {
        rememberUserName(camera);
    } catch (...) {
        // Keep the name that was read when the camera was opened.
    }
    camera.release();
}

void System::shutDown()
{
    m_ending = true;
    // Set the limits of all cameras first, so that several unresponsive cameras take no longer than one.
    for (const auto& provider : m_providers)
        provider->cancel();
    const auto cameras = m_cameras.close();
    for (const auto& camera : cameras)
        camera->closeBy(std::chrono::steady_clock::now() + kClosingLimit);
    for (const auto& camera : cameras)
        close(*camera);
    {
        std::unique_lock lock(m_closingMutex);
        m_closed.wait(lock, [this] { return m_closing.empty(); });
    }
    (void)m_streams.close();
    for (const auto& signal : m_signals.close())
        signal->close(CAM_API_STS_NOT_INITIALIZED);
    const std::lock_guard providers(root().providers);
    m_providers.clear();
}

} // namespace cameralibs

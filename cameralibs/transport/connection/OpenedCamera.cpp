#include "cameralibs/transport/connection/OpenedCamera.h"

#include "cameralibs/base/ErrorStatus.h"
#include "cameralibs/transport/AravisHooks.h"
#include "cameralibs/transport/Reporting.h"
#include "cameralibs/transport/Restrictions.h"
#include "cameralibs/transport/discovery/Discovery.h"
#include "cameralibs/transport/gige/GigeReception.h"
#include "cameralibs/transport/usb/UsbReception.h"
#include "cameralibs/transport/usb/UsbTraffic.h"

#include <algorithm>
#include <utility>

namespace cameralibs::transport {

using namespace Orvo;

namespace {

/// GenICam: with descriptions of an older schema, registers of a GigE Vision camera are read with register commands,
/// not as memory.
bool hasOldDescription(ArvDevice* device)
{
    ArvGc* const genicam = arv_device_get_genicam(device);
    ArvGcNode* const node = genicam == nullptr ? nullptr : arv_gc_get_node(genicam, "RegisterDescription");
    return ARV_IS_GC_REGISTER_DESCRIPTION_NODE(node) != FALSE &&
           arv_gc_register_description_node_compare_schema_version(ARV_GC_REGISTER_DESCRIPTION_NODE(node), 1, 1, 0) < 0;
}

OpenedCamera::Access accessOf(bool done, const GErrorPointer& error)
{
    if (!error) {
        // Aravis reports some failures of USB devices without an error.
        return done ? OpenedCamera::Access{} : OpenedCamera::Access{1 + ARV_DEVICE_ERROR_UNKNOWN, {}};
    }
    OpenedCamera::Access access{1 + ARV_DEVICE_ERROR_UNKNOWN, error->message};
    if (error->domain == ARV_DEVICE_ERROR)
        access.error = 1 + static_cast<std::uint32_t>(error->code);
    return access;
}

/// Aravis reports the same error for a USB3 Vision camera that is claimed by another program and for one that answers
/// incorrectly. Aravis divides by the space for data and allocates the description's size unchecked; impossible values
/// end the process.
Outcome outcomeOfUsb(Outcome outcome)
{
    if (outcome.status != CAM_API_STS_BUSY)
        return outcome;
    if (claimRefused())
        return {CAM_API_STS_BUSY, "Another program or driver has the camera"};
    if (answersUsbCommands())
        return {CAM_API_STS_XML_LOAD_ERR, "The camera answers, but its description cannot be read"};
    return {CAM_API_STS_CAMERA_NOT_RESPONDING, "The camera does not answer"};
}

} // namespace

Outcome OpenedCamera::open(CAM_LINK link, const std::string& name)
{
    enableKinds(link == CAM_LINK_USB3_VISION, link == CAM_LINK_GIGE_VISION);
    GErrorPointer error;
    GObjectPointer<ArvDevice> opened(arv_open_device(name.c_str(), error.out()));
    Outcome outcome = outcomeOfOpening(error);
    if (link == CAM_LINK_USB3_VISION)
        outcome = outcomeOfUsb(outcome);
    if (!outcome.ok() && !refusedFile().empty()) {
        return {CAM_API_STS_XML_LOAD_ERR,
                "The camera refers to a local file for its description, which is refused: " + refusedFile()};
    }
    // Aravis reports the same error for a camera that is gone and for one whose description it cannot read.
    if (outcome.status == CAM_API_STS_CAMERA_NOT_RESPONDING && answersEverything())
        return {CAM_API_STS_XML_LOAD_ERR, "The camera answers, but its description cannot be read"};
    if (!outcome.ok())
        return outcome;
    if (opened == nullptr)
        return {CAM_API_STS_CAMERA_NOT_RESPONDING, {}};
    if (!seesAnswers()) {
        note(Severity::warning,
             "This version of Aravis receives answers in an unknown way, so slow cameras get less time");
    }
    const bool gige = ARV_IS_GV_DEVICE(opened.get()) != FALSE;
    if (gige && arv_gv_device_is_controller(ARV_GV_DEVICE(opened.get())) == FALSE) {
        // Not destroyed: that would release control, which the camera has given to the other program.
        (void)opened.release();
        return {CAM_API_STS_ACCESS_DENIED, "Another program controls the camera"};
    }
    g_signal_connect(opened.get(), "control-lost",
                     G_CALLBACK(+[](ArvDevice*, void*) { leaveAsLost("Aravis has lost the camera"); }), nullptr);
    if (gige) {
        m_oldDescription = hasOldDescription(opened.get());
        m_probe.emplace(ARV_GV_DEVICE(opened.get()));
    }
    m_device = std::move(opened);
    return {};
}

std::string_view OpenedCamera::description() const
{
    std::size_t size = 0;
    const char* const text = arv_device_get_genicam_xml(m_device.get(), &size);
    return text == nullptr ? std::string_view{} : std::string_view(text, size);
}

OpenedCamera::Access OpenedCamera::read(std::uint64_t address, std::uint32_t size, char* to)
{
    GErrorPointer error;
    if (!takesRegistersFor(size)) {
        const bool done = arv_device_read_memory(m_device.get(), address, size, to, error.out()) != FALSE;
        return accessOf(done, error);
    }
    guint32 value = 0;
    const bool done = arv_device_read_register(m_device.get(), address, &value, error.out()) != FALSE;
    value = GUINT32_TO_BE(value);
    std::copy_n(reinterpret_cast<const char*>(&value), sizeof value, to);
    return accessOf(done, error);
}

OpenedCamera::Access OpenedCamera::write(std::uint64_t address, std::string_view bytes)
{
    GErrorPointer error;
    if (!takesRegistersFor(bytes.size())) {
        std::string copy(bytes); // older versions of Aravis take a pointer to mutable bytes
        const bool done = arv_device_write_memory(m_device.get(), address, static_cast<guint32>(copy.size()),
                                                  copy.data(), error.out()) != FALSE;
        return accessOf(done, error);
    }
    guint32 value = 0;
    bytes.copy(reinterpret_cast<char*>(&value), sizeof value);
    const bool done = arv_device_write_register(m_device.get(), address, GUINT32_FROM_BE(value), error.out()) != FALSE;
    return accessOf(done, error);
}

Outcome OpenedCamera::openSource(const Descriptor& memory, std::uint64_t size)
{
    m_images.reset();
    allowBuffers(size);
    auto shared = std::make_unique<SharedMemory>(memory, size);
    if (shared->empty())
        return {CAM_API_STS_NO_MEMORY, "The image buffers cannot be mapped"};
    std::unique_ptr<Reception> reception;
    if (Outcome outcome = makeReception(reception); !outcome.ok())
        return outcome;
    m_images = std::make_unique<ImageSender>(std::move(reception), std::move(shared));
    if (m_probe)
        m_images->onImage = [this] { m_probe->noteSign(); };
    return {};
}

Outcome OpenedCamera::start(Descriptor channel)
{
    if (m_images == nullptr)
        return {CAM_API_STS_INVALID_PARAMETER, {}};
    return m_images->start(std::move(channel));
}

void OpenedCamera::stop()
{
    if (m_images != nullptr)
        m_images->stop();
}

void OpenedCamera::close()
{
    m_images.reset();
    m_probe.reset();
    m_device.reset();
}

Outcome OpenedCamera::makeReception(std::unique_ptr<Reception>& reception)
{
    if (ARV_IS_UV_DEVICE(m_device.get())) {
        reception = std::make_unique<UsbReception>(m_device.get());
        return {};
    }
    return GigeReception::make(ARV_GV_DEVICE(m_device.get()), reception);
}

bool OpenedCamera::takesRegistersFor(std::uint64_t size) const
{
    return m_oldDescription && size == sizeof(guint32);
}

} // namespace cameralibs::transport

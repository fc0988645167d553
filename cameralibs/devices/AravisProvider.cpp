#include "AravisProvider.h"

namespace orvo {
namespace {
class AravisProvider : public DeviceProvider {
public:
    std::vector<DeviceInfo> enumerate() override { return {}; }
    Outcome open(const std::string&, std::unique_ptr<Device>&) override
    {
        return {Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING, {}};
    }
};
} // namespace
std::unique_ptr<DeviceProvider> makeAravisProvider(bool, bool)
{
    return std::make_unique<AravisProvider>();
}
} // namespace orvo

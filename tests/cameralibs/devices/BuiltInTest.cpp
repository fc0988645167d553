#include "tests/cameralibs/devices/BuiltInTest.h"

#include <map>
#include <memory>

namespace {

struct World {
    Library library;
    std::map<std::uint32_t, SimulatedCamera> cameras; ///< opened so far, by index
};

std::unique_ptr<World>& world()
{
    static std::unique_ptr<World> theWorld;
    return theWorld;
}

} // namespace

void BuiltInTest::SetUpTestSuite()
{
    world() = std::make_unique<World>();
}

void BuiltInTest::TearDownTestSuite()
{
    world().reset();
}

const SimulatedCamera& BuiltInTest::switchedOn(std::uint32_t index)
{
    const SimulatedCamera& camera = world()->cameras.try_emplace(index, index).first->second;
    camera.execute("DeviceReset");
    return camera;
}

#include "cameralibs/devices/simulated/registers/UserSets.h"

#include "cameralibs/devices/simulated/registers/Attachment.h"
#include "cameralibs/devices/simulated/registers/RegisterMemory.h"
#include "cameralibs/devices/simulated/registers/RegisterTable.h"

namespace cameralibs::simulated {

namespace {

constexpr auto& kSelector = registerNamed("UserSetSelector");
constexpr auto& kDefault = registerNamed("UserSetDefault");
constexpr auto& kDescription = registerNamed("UserSetDescription");
constexpr auto& kUserName = registerNamed("DeviceUserID");

static_assert(kDescription.count == NonVolatile::kUserSets);

} // namespace

UserSets::UserSets(RegisterMemory& memory, Attachment& attachment)
    : m_memory(memory)
    , m_attachment(attachment)
{
}

void UserSets::powerUp()
{
    m_factory = m_memory.save();
    const NonVolatile kept = m_attachment.memory();
    m_memory.setText(kUserName, kept.userName);
    m_memory.set(kDefault, kept.defaultSet);
    for (std::uint32_t set = 0; set < kDescription.count; ++set)
        m_memory.setText(kDescription, kept.descriptions[set], set);
    loadSet(kept.defaultSet);
}

void UserSets::load()
{
    loadSet(selected());
}

void UserSets::save()
{
    if (selected() == 0)
        return;
    NonVolatile kept = m_attachment.memory();
    kept.sets[selected()] = m_memory.save();
    m_attachment.setMemory(kept);
}

void UserSets::keep()
{
    NonVolatile kept = m_attachment.memory();
    kept.userName = m_memory.text(kUserName);
    kept.defaultSet = static_cast<std::uint32_t>(m_memory.integer(kDefault));
    for (std::uint32_t set = 0; set < kDescription.count; ++set)
        kept.descriptions[set] = m_memory.text(kDescription, set);
    m_attachment.setMemory(kept);
}

std::uint32_t UserSets::selected() const
{
    return static_cast<std::uint32_t>(m_memory.integer(kSelector));
}

void UserSets::loadSet(std::uint32_t number)
{
    const auto saved = m_attachment.memory().sets[number];
    m_memory.load(saved.empty() ? m_factory : saved);
}

} // namespace cameralibs::simulated

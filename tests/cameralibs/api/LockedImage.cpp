#include "tests/cameralibs/api/LockedImage.h"

#include <gtest/gtest.h>

using namespace Orvo;

LockedImage::LockedImage(CAM_STRM_HANDLE stream)
    : m_stream(stream)
{
    EXPECT_EQ(Strm_GetCurrentBufferIndex(m_stream, &m_slot), CAM_API_STS_SUCCESS);
    EXPECT_EQ(Strm_LockBuffer(m_stream, m_slot, &m_info), CAM_API_STS_SUCCESS);
    m_bytes = bytes();
    EXPECT_FALSE(m_bytes.empty());
}

LockedImage::~LockedImage()
{
    EXPECT_EQ(Strm_UnlockBuffer(m_stream, m_slot), CAM_API_STS_SUCCESS);
}

std::vector<std::uint8_t> LockedImage::bytes() const
{
    const auto* const data = static_cast<const std::uint8_t*>(m_info.data);
    return {data, data + m_info.dataSize};
}

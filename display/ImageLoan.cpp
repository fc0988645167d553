#include "display/ImageLoan.h"

#include "display/ConversionBuffer.h"

ImageLoan::ImageLoan(ConversionBuffer* buffer, const QImage& image) noexcept
    : m_buffer(buffer && buffer->isLent() && image.constBits() == buffer->pixels() ? buffer : nullptr)
{
}

ImageLoan::~ImageLoan()
{
    if (m_buffer)
        m_buffer->m_lent.store(false, std::memory_order_release);
}

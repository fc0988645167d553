#include "display/ImageLoan.h"

#include "display/ConversionBuffer.h"

ImageLoan::ImageLoan(std::shared_ptr<ConversionBuffer> buffer, const QImage& image) noexcept
{
    if (buffer && buffer->isLent() && image.constBits() == buffer->m_pixels.get())
        m_buffer = std::move(buffer);
}

ImageLoan::~ImageLoan()
{
    if (m_buffer)
        m_buffer->m_lent.store(false, std::memory_order_release);
}

#pragma once

#include <QImage>

class ConversionBuffer;

/// The GUI thread's hold on a lent image, for as long as the buffer is there: while it lives, what the display thread
/// wrote is there to be read, and when it goes, the display thread may write again.
class ImageLoan {
public:
    /// Holds nothing where `image` is not the one that `buffer` lent last, such as one of an earlier stream, or where
    /// there is no buffer.
    ImageLoan(ConversionBuffer* buffer, const QImage& image) noexcept;
    ~ImageLoan();
    Q_DISABLE_COPY_MOVE(ImageLoan)

private:
    ConversionBuffer* const m_buffer;
};

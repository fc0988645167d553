#pragma once

#include <QImage>

class ConversionBuffer;

/// The GUI thread's hold on a lent image. While it exists the GUI thread may read what the display thread wrote; when
/// it is destroyed the display thread may write again.
class ImageLoan {
public:
    /// Holds nothing if there is no buffer, or if `image` is not the one that `buffer` lent last, such as one of an
    /// earlier stream.
    ImageLoan(ConversionBuffer* buffer, const QImage& image) noexcept;
    ~ImageLoan();
    Q_DISABLE_COPY_MOVE(ImageLoan)

private:
    ConversionBuffer* const m_buffer;
};

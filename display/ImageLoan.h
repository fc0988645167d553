#pragma once

#include <QImage>

class ConversionBuffer;

/// The GUI thread's claim to a lent image. As long as it exists, the GUI thread may read what the display thread wrote;
/// after that the display thread may write again.
class ImageLoan {
public:
    /// Does nothing if there is no buffer, or if `image` is not the last one lent by `buffer`, such as one of an
    /// earlier stream.
    ImageLoan(ConversionBuffer* buffer, const QImage& image) noexcept;
    ~ImageLoan();
    Q_DISABLE_COPY_MOVE(ImageLoan)

private:
    ConversionBuffer* const m_buffer;
};

#pragma once

#include <QImage>

#include <memory>

class ConversionBuffer;

/// The GUI thread's hold on a lent image: while it lives, what the display thread wrote is there to be read, and when
/// it goes, the display thread may write again.
class ImageLoan {
public:
    /// Holds nothing where `image` is not the one that `buffer` lent last, such as one of an earlier stream, or where
    /// there is no buffer.
    ImageLoan(std::shared_ptr<ConversionBuffer> buffer, const QImage& image) noexcept;
    ~ImageLoan();
    Q_DISABLE_COPY_MOVE(ImageLoan)

private:
    std::shared_ptr<ConversionBuffer> m_buffer;
};

// Two rows of a Bayer image at once.
#if defined(ORVO_BAYER_STEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVO_BAYER_STEPS_INL_H
#undef ORVO_BAYER_STEPS_INL_H
#else
#define ORVO_BAYER_STEPS_INL_H
#endif

#include "cameralibs/util/conversion/BgraSteps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace orvo::HWY_NAMESPACE {

static_assert(bayerMargin >= vectorBytes + 3);

/// Every second column, as words.
HWY_INLINE SignedVector evenColumns(const std::uint8_t* row)
{
    return hn::And(hn::BitCast(SignedWords(), load(row)), hn::Set(SignedWords(), std::int16_t{0xFF}));
}

HWY_INLINE SignedVector oddColumns(const std::uint8_t* row)
{
    return hn::BitCast(SignedWords(), hn::ShiftRight<8>(hn::BitCast(Words(), load(row))));
}

/// What the columns of the sites themselves give to the filters: the sites of both rows, and sums of those above and
/// below them.
struct OwnColumns {
    SignedVector here0;
    SignedVector here1;
    SignedVector near0;
    SignedVector near1;
    SignedVector far0;
    SignedVector far1;
};

HWY_INLINE OwnColumns ownColumns(SignedVector row0, SignedVector row1, SignedVector row2, SignedVector row3,
                                 SignedVector row4, SignedVector row5)
{
    return {row2, row3, hn::Add(row1, row3), hn::Add(row2, row4), hn::Add(row0, row4), hn::Add(row1, row5)};
}

/// What the filters take of a site and around it.
struct Site {
    SignedVector here;
    SignedVector inRow;
    SignedVector inColumn;
    SignedVector farInRow;
    SignedVector farInColumn;
    SignedVector diagonal;
};

/// The rounded upper half of a product: (sum + 4) >> 3 and (sum + 8) >> 4, of negative sums too.
HWY_INLINE SignedVector fromEighths(SignedVector sum)
{
    return hn::MulFixedPoint15(sum, hn::Set(SignedWords(), std::int16_t{4096}));
}

HWY_INLINE SignedVector fromSixteenths(SignedVector sum)
{
    return hn::MulFixedPoint15(sum, hn::Set(SignedWords(), std::int16_t{2048}));
}

/// The colours of a row's sites: those that it has, and those that the rows above and below have.
struct Colours {
    SignedVector ofRow;
    SignedVector green;
    SignedVector ofColumn;
};

HWY_INLINE Colours coloursAtColour(const Site& s)
{
    const auto far = hn::Add(s.farInRow, s.farInColumn);
    const auto near = hn::Add(s.inRow, s.inColumn);
    const auto twice = hn::Add(s.here, s.here);
    const auto half = hn::Add(twice, near);
    const auto green = hn::Sub(hn::Add(half, half), far);
    const auto quarter = hn::Sub(hn::Add(hn::Add(twice, s.here), s.diagonal), far);
    const auto opposite = hn::Add(hn::ShiftLeft<2>(quarter), far);
    return {s.here, fromEighths(green), fromSixteenths(opposite)};
}

HWY_INLINE Colours coloursAtGreen(const Site& s)
{
    const auto shared = hn::Sub(hn::Add(hn::ShiftLeft<2>(s.here), s.here), s.diagonal);
    const auto halfOfRow = hn::Sub(hn::Add(shared, hn::ShiftLeft<2>(s.inRow)), s.farInRow);
    const auto halfOfColumn = hn::Sub(hn::Add(shared, hn::ShiftLeft<2>(s.inColumn)), s.farInColumn);
    return {fromSixteenths(hn::Add(hn::Add(halfOfRow, halfOfRow), s.farInColumn)), s.here,
            fromSixteenths(hn::Add(hn::Add(halfOfColumn, halfOfColumn), s.farInRow))};
}

HWY_INLINE ByteVector inTurn(SignedVector even, SignedVector odd)
{
    static constexpr BlockTable turns{0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15};
    return lookUp(packed(even, odd), repeated(turns));
}

template <bool RedRow> HWY_INLINE void writeColours(const Colours& even, const Colours& odd, std::uint8_t* bgra)
{
    const ByteVector ofRow = inTurn(even.ofRow, odd.ofRow);
    const ByteVector green = inTurn(even.green, odd.green);
    const ByteVector ofColumn = inTurn(even.ofColumn, odd.ofColumn);
    writePixels(RedRow ? ofColumn : ofRow, green, RedRow ? ofRow : ofColumn, bgra);
}

template <bool AtGreen> HWY_INLINE Colours coloursAt(const Site& site)
{
    return AtGreen ? coloursAtGreen(site) : coloursAtColour(site);
}

/// A vector of pixels of both rows. In one of them green comes first, and one has red. The second row is stored first:
/// see RowKernels. The order of the work keeps few vectors alive at a time.
template <bool GreenFirst, bool RedFirst>
HWY_INLINE void bayerStep(const BayerRows& rows, std::size_t x, std::uint8_t* first, std::uint8_t* second)
{
    const auto even = [&](std::size_t row, std::ptrdiff_t offset)
                          HWY_ATTR { return evenColumns(rows[row] + x + offset); };
    const auto odd = [&](std::size_t row, std::ptrdiff_t offset)
                         HWY_ATTR { return oddColumns(rows[row] + x + offset); };
    const OwnColumns e = ownColumns(even(0, 0), even(1, 0), even(2, 0), even(3, 0), even(4, 0), even(5, 0));
    const OwnColumns o = ownColumns(odd(0, 0), odd(1, 0), odd(2, 0), odd(3, 0), odd(4, 0), odd(5, 0));

    // The columns beside even ones are odd ones, from the one before on.
    const SignedVector before2 = odd(2, -2);
    const SignedVector before3 = odd(3, -2);
    const Colours even0 =
        coloursAt<GreenFirst>({e.here0, hn::Add(before2, o.here0), e.near0, hn::Add(even(2, -2), even(2, 2)), e.far0,
                               hn::Add(hn::Add(odd(1, -2), before3), o.near0)});
    const Colours even1 =
        coloursAt<!GreenFirst>({e.here1, hn::Add(before3, o.here1), e.near1, hn::Add(even(3, -2), even(3, 2)), e.far1,
                                hn::Add(hn::Add(before2, odd(4, -2)), o.near1)});

    const SignedVector after2 = even(2, 2);
    const SignedVector after3 = even(3, 2);
    const Colours odd1 = coloursAt<GreenFirst>({o.here1, hn::Add(e.here1, after3), o.near1, hn::Add(before3, odd(3, 2)),
                                                o.far1, hn::Add(e.near1, hn::Add(after2, even(4, 2)))});
    writeColours<!RedFirst>(even1, odd1, second);
    const Colours odd0 =
        coloursAt<!GreenFirst>({o.here0, hn::Add(e.here0, after2), o.near0, hn::Add(before2, odd(2, 2)), o.far0,
                                hn::Add(e.near0, hn::Add(even(1, 2), after3))});
    writeColours<RedFirst>(even0, odd0, first);
}

template <bool GreenFirst, bool RedFirst>
HWY_INLINE void overBayerRows(const BayerRows& rows, std::size_t pixels, std::uint8_t* first, std::uint8_t* second)
{
    const BayerRows localRows = rows; // which no store can change
    std::size_t x = 0;
    for (; x + vectorBytes <= pixels; x += vectorBytes) {
        bayerStep<GreenFirst, RedFirst>(localRows, x, first + bytesPerBgra * x, second + bytesPerBgra * x);
    }
    if (x == pixels) {
        return;
    }
    // The last step overlaps the one before. It begins with an even column, so that its last one may lie outside.
    x = pixels < vectorBytes ? 0 : (pixels - vectorBytes + 1) / 2 * 2;
    if (x + vectorBytes == pixels) {
        bayerStep<GreenFirst, RedFirst>(localRows, x, first + bytesPerBgra * x, second + bytesPerBgra * x);
    } else {
        std::array<std::uint8_t, bytesPerBgra * vectorBytes> firstBuffer;
        std::array<std::uint8_t, bytesPerBgra * vectorBytes> secondBuffer;
        bayerStep<GreenFirst, RedFirst>(localRows, x, firstBuffer.data(), secondBuffer.data());
        std::memcpy(second + bytesPerBgra * x, secondBuffer.data(), bytesPerBgra * (pixels - x));
        std::memcpy(first + bytesPerBgra * x, firstBuffer.data(), bytesPerBgra * (pixels - x));
    }
}

void bgraFromBayer(const BayerRows& rows, BayerRow first, std::size_t pixels, std::uint8_t* firstBgra,
                   std::uint8_t* secondBgra)
{
    switch (first) {
    case BayerRow::RedGreen:
        overBayerRows<false, true>(rows, pixels, firstBgra, secondBgra);
        break;
    case BayerRow::GreenRed:
        overBayerRows<true, true>(rows, pixels, firstBgra, secondBgra);
        break;
    case BayerRow::BlueGreen:
        overBayerRows<false, false>(rows, pixels, firstBgra, secondBgra);
        break;
    case BayerRow::GreenBlue:
        overBayerRows<true, false>(rows, pixels, firstBgra, secondBgra);
        break;
    }
}

} // namespace orvo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // per target

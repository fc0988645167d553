// Two rows of a Bayer image at once.
#if defined(ORVO_BAYER_STEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVO_BAYER_STEPS_INL_H
#undef ORVO_BAYER_STEPS_INL_H
#else
#define ORVO_BAYER_STEPS_INL_H
#endif

#include "cameralibs/util/conversion/BgraSteps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace cameralibs::HWY_NAMESPACE {

static_assert(bayerMargin >= vectorBytes + 3);
static_assert(bayerImageWidth >= 2 * vectorBytes);

/// Every second column, as words.
HWY_INLINE SignedVector evenColumns(ByteVector columns)
{
    return hn::And(hn::BitCast(SignedWords(), columns), hn::Set(SignedWords(), std::int16_t{0xFF}));
}

HWY_INLINE SignedVector oddColumns(ByteVector columns)
{
    return hn::BitCast(SignedWords(), hn::ShiftRight<8>(hn::BitCast(Words(), columns)));
}

/// What stands beside the columns of a step: more of the row, or at an edge of the image the mirrored columns.
enum class Beside { Columns, LeftEdge, RightEdge };

/// The columns from `Offset` (-2, 0 or 2) after `row` on.
template <Beside Place, std::ptrdiff_t Offset> HWY_INLINE ByteVector columnsAt(const std::uint8_t* row)
{
    if constexpr (Place == Beside::LeftEdge && Offset == -2) {
        static constexpr BlockTable mirror{2, 1};
        const ByteVector mirrored = lookUp(load(row), repeated(mirror));
        return hn::IfThenElse(hn::FirstN(Bytes(), 2), mirrored, load(row + Offset));
    } else if constexpr (Place == Beside::RightEdge && Offset == 2) {
        static constexpr BlockTable mirror{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 14, 13};
        const ByteVector mirrored = lookUp(load(row), repeated(mirror));
        return hn::IfThenElse(hn::FirstN(Bytes(), vectorBytes - 2), load(row + Offset), mirrored);
    } else {
        return load(row + Offset);
    }
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

/// Brings what the next steps write into the cache. Two rows at once are more than the processor fetches ahead by
/// itself: its stores would wait for memory. Addresses behind the image do no harm.
HWY_INLINE void expectStores(const std::uint8_t* bgra)
{
    constexpr std::size_t cacheLine = 64;
    constexpr std::size_t ahead = 2048;
    for (std::size_t line = 0; line < bytesPerBgra * vectorBytes; line += cacheLine) {
        __builtin_prefetch(bgra + ahead + line, 1);
    }
}

/// A vector of pixels of both rows. In one of them green comes first, and one has red. The second row is stored first:
/// see RowKernels. The order of the work keeps few vectors alive at a time.
template <bool GreenFirst, bool RedFirst, Beside Place>
HWY_INLINE void bayerStep(const BayerRows& rows, std::size_t x, std::uint8_t* first, std::uint8_t* second)
{
    const auto even = [&](std::size_t row) HWY_ATTR { return evenColumns(load(rows[row] + x)); };
    const auto odd = [&](std::size_t row) HWY_ATTR { return oddColumns(load(rows[row] + x)); };
    const auto before = [&](std::size_t row) HWY_ATTR { return columnsAt<Place, -2>(rows[row] + x); };
    const auto after = [&](std::size_t row) HWY_ATTR { return columnsAt<Place, 2>(rows[row] + x); };
    const OwnColumns e = ownColumns(even(0), even(1), even(2), even(3), even(4), even(5));
    const OwnColumns o = ownColumns(odd(0), odd(1), odd(2), odd(3), odd(4), odd(5));

    // The columns beside even ones are odd ones, from the one before on.
    const ByteVector before2 = before(2);
    const ByteVector before3 = before(3);
    const ByteVector after2 = after(2);
    const ByteVector after3 = after(3);
    const SignedVector oddBefore2 = oddColumns(before2);
    const SignedVector oddBefore3 = oddColumns(before3);
    const SignedVector evenAfter2 = evenColumns(after2);
    const SignedVector evenAfter3 = evenColumns(after3);
    const Colours even0 = coloursAt<GreenFirst>({e.here0, hn::Add(oddBefore2, o.here0), e.near0,
                                                 hn::Add(evenColumns(before2), evenAfter2), e.far0,
                                                 hn::Add(hn::Add(oddColumns(before(1)), oddBefore3), o.near0)});
    const Colours even1 = coloursAt<!GreenFirst>({e.here1, hn::Add(oddBefore3, o.here1), e.near1,
                                                  hn::Add(evenColumns(before3), evenAfter3), e.far1,
                                                  hn::Add(hn::Add(oddBefore2, oddColumns(before(4))), o.near1)});

    const Colours odd1 =
        coloursAt<GreenFirst>({o.here1, hn::Add(e.here1, evenAfter3), o.near1, hn::Add(oddBefore3, oddColumns(after3)),
                               o.far1, hn::Add(e.near1, hn::Add(evenAfter2, evenColumns(after(4))))});
    writeColours<!RedFirst>(even1, odd1, second);
    const Colours odd0 =
        coloursAt<!GreenFirst>({o.here0, hn::Add(e.here0, evenAfter2), o.near0, hn::Add(oddBefore2, oddColumns(after2)),
                                o.far0, hn::Add(e.near0, hn::Add(evenColumns(after(1)), evenAfter3))});
    writeColours<RedFirst>(even0, odd0, first);
}

/// A step over pixels of the image itself.
template <bool GreenFirst, bool RedFirst, Beside Place>
HWY_INLINE void stepInPlace(const BayerRows& rows, std::size_t x, std::uint8_t* first, std::uint8_t* second)
{
    first += bytesPerBgra * x;
    second += bytesPerBgra * x;
    expectStores(first);
    expectStores(second);
    bayerStep<GreenFirst, RedFirst, Place>(rows, x, first, second);
}

template <bool GreenFirst, bool RedFirst> struct OverLines {
    HWY_INLINE static void run(const BayerRows& rows, std::size_t pixels, std::uint8_t* first, std::uint8_t* second)
    {
        std::size_t x = 0;
        for (; x + vectorBytes <= pixels; x += vectorBytes) {
            stepInPlace<GreenFirst, RedFirst, Beside::Columns>(rows, x, first, second);
        }
        if (x == pixels) {
            return;
        }
        // The last step overlaps the one before. It begins with an even column, so that its last one may lie outside.
        x = pixels < vectorBytes ? 0 : (pixels - vectorBytes + 1) / 2 * 2;
        if (x + vectorBytes == pixels) {
            stepInPlace<GreenFirst, RedFirst, Beside::Columns>(rows, x, first, second);
        } else {
            std::array<std::uint8_t, bytesPerBgra * vectorBytes> firstBuffer;
            std::array<std::uint8_t, bytesPerBgra * vectorBytes> secondBuffer;
            bayerStep<GreenFirst, RedFirst, Beside::Columns>(rows, x, firstBuffer.data(), secondBuffer.data());
            std::memcpy(second + bytesPerBgra * x, secondBuffer.data(), bytesPerBgra * (pixels - x));
            std::memcpy(first + bytesPerBgra * x, firstBuffer.data(), bytesPerBgra * (pixels - x));
        }
    }
};

template <bool GreenFirst, bool RedFirst> struct InImage {
    HWY_INLINE static void run(const BayerRows& rows, std::size_t pixels, std::uint8_t* first, std::uint8_t* second)
    {
        stepInPlace<GreenFirst, RedFirst, Beside::LeftEdge>(rows, 0, first, second);
        const std::size_t last = pixels - vectorBytes;
        for (std::size_t x = vectorBytes; x < last; x += vectorBytes) {
            stepInPlace<GreenFirst, RedFirst, Beside::Columns>(rows, x, first, second);
        }
        stepInPlace<GreenFirst, RedFirst, Beside::RightEdge>(rows, last, first, second);
    }
};

template <template <bool, bool> class Way>
HWY_INLINE void overBayerRows(const BayerRows& rows, BayerRow first, std::size_t pixels, std::uint8_t* firstBgra,
                              std::uint8_t* secondBgra)
{
    const BayerRows localRows = rows; // which no store can change
    switch (first) {
    case BayerRow::RedGreen:
        Way<false, true>::run(localRows, pixels, firstBgra, secondBgra);
        break;
    case BayerRow::GreenRed:
        Way<true, true>::run(localRows, pixels, firstBgra, secondBgra);
        break;
    case BayerRow::BlueGreen:
        Way<false, false>::run(localRows, pixels, firstBgra, secondBgra);
        break;
    case BayerRow::GreenBlue:
        Way<true, false>::run(localRows, pixels, firstBgra, secondBgra);
        break;
    }
}

void bgraFromBayer(const BayerRows& rows, BayerRow first, std::size_t pixels, std::uint8_t* firstBgra,
                   std::uint8_t* secondBgra)
{
    overBayerRows<OverLines>(rows, first, pixels, firstBgra, secondBgra);
}

void bgraFromBayerImage(const BayerRows& rows, BayerRow first, std::size_t pixels, std::uint8_t* firstBgra,
                        std::uint8_t* secondBgra)
{
    overBayerRows<InImage>(rows, first, pixels, firstBgra, secondBgra);
}

} // namespace cameralibs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif // per target

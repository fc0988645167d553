// Converts two rows of a Bayer image at a time.
#if defined(ORVO_BAYER_STEPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ORVO_BAYER_STEPS_INL_H
#undef ORVO_BAYER_STEPS_INL_H
#else
#define ORVO_BAYER_STEPS_INL_H
#endif

#include "cameralibs/util/conversion/BgraSteps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace cameralibs::HWY_NAMESPACE {

static_assert(kBayerMargin >= kVectorBytes + 3);
static_assert(kMinBayerImageWidth >= 2 * kVectorBytes);

/// Every second column as words.
HWY_INLINE SignedVector evenColumns(ByteVector columns)
{
    return hn::And(hn::BitCast(SignedWords(), columns), hn::Set(SignedWords(), std::int16_t{0xFF}));
}

HWY_INLINE SignedVector oddColumns(ByteVector columns)
{
    return hn::BitCast(SignedWords(), hn::ShiftRight<8>(hn::BitCast(Words(), columns)));
}

/// What is beside the columns of a step: more columns of the row, or mirrored ones at an edge of the image.
enum class Beside { Columns, LeftEdge, RightEdge };

/// The columns that start at `row` + `Offset`, which is -2, 0 or 2.
template <Beside Place, std::ptrdiff_t Offset> HWY_INLINE ByteVector columnsAt(const std::uint8_t* row)
{
    if constexpr (Place == Beside::LeftEdge && Offset == -2) {
        static constexpr BlockTable kMirror{2, 1};
        const ByteVector mirrored = lookUp(load(row), repeated(kMirror));
        return hn::IfThenElse(hn::FirstN(Bytes(), 2), mirrored, load(row + Offset));
    } else if constexpr (Place == Beside::RightEdge && Offset == 2) {
        static constexpr BlockTable kMirror{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 14, 13};
        const ByteVector mirrored = lookUp(load(row), repeated(kMirror));
        return hn::IfThenElse(hn::FirstN(Bytes(), kVectorBytes - 2), load(row + Offset), mirrored);
    } else {
        return load(row + Offset);
    }
}

/// The filter inputs from the column of a site itself, for both rows: its value, and the sums of the neighbours above
/// and below at a distance of one (near) and two (far).
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

/// The inputs of the filters for one site: its value and sums of its neighbours.
struct Site {
    SignedVector here;
    SignedVector inRow;
    SignedVector inColumn;
    SignedVector farInRow;
    SignedVector farInColumn;
    SignedVector diagonal;
};

/// (sum + 4) >> 3, computed as the rounded upper half of a product. Also correct for negative sums.
HWY_INLINE SignedVector fromEighths(SignedVector sum)
{
    return hn::MulFixedPoint15(sum, hn::Set(SignedWords(), std::int16_t{4096}));
}

/// (sum + 8) >> 4.
HWY_INLINE SignedVector fromSixteenths(SignedVector sum)
{
    return hn::MulFixedPoint15(sum, hn::Set(SignedWords(), std::int16_t{2048}));
}

/// The interpolated colours: the one that alternates with green in this row, green, and the one of the rows above and
/// below.
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
    static constexpr BlockTable kTurns{0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15};
    return lookUp(packed(even, odd), repeated(kTurns));
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

/// Prefetches the destination of later steps. Hardware prefetching does not keep up with writing two rows at once, so
/// stores would wait for memory. Prefetching an address outside the image is harmless.
HWY_INLINE void expectStores(const std::uint8_t* bgra)
{
    constexpr std::size_t kCacheLine = 64;
    constexpr std::size_t kAhead = 2048;
    for (std::size_t line = 0; line < kBytesPerBgra * kVectorBytes; line += kCacheLine)
        __builtin_prefetch(bgra + kAhead + line, 1);
}

/// Converts one vector of pixels in each of the two rows. Stores the second row first; see RowKernels::bgraFromBayer.
/// The order of the calculations keeps the number of live registers low.
template <bool GreenFirst, bool RedFirst, Beside Place>
HWY_INLINE void bayerStep(const BayerRows& rows, std::size_t x, std::uint8_t* first, std::uint8_t* second)
{
    const auto even = [&](std::size_t row) HWY_ATTR { return evenColumns(load(rows[row] + x)); };
    const auto odd = [&](std::size_t row) HWY_ATTR { return oddColumns(load(rows[row] + x)); };
    const auto before = [&](std::size_t row) HWY_ATTR { return columnsAt<Place, -2>(rows[row] + x); };
    const auto after = [&](std::size_t row) HWY_ATTR { return columnsAt<Place, 2>(rows[row] + x); };
    const OwnColumns e = ownColumns(even(0), even(1), even(2), even(3), even(4), even(5));
    const OwnColumns o = ownColumns(odd(0), odd(1), odd(2), odd(3), odd(4), odd(5));

    // The neighbours of even columns are odd ones, starting with the one before.
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

/// A step that writes directly to the image.
template <bool GreenFirst, bool RedFirst, Beside Place>
HWY_INLINE void stepInPlace(const BayerRows& rows, std::size_t x, std::uint8_t* first, std::uint8_t* second)
{
    first += kBytesPerBgra * x;
    second += kBytesPerBgra * x;
    expectStores(first);
    expectStores(second);
    bayerStep<GreenFirst, RedFirst, Place>(rows, x, first, second);
}

template <bool GreenFirst, bool RedFirst> struct OverLines {
    HWY_INLINE static void run(const BayerRows& rows, std::size_t pixels, std::uint8_t* first, std::uint8_t* second)
    {
        std::size_t x = 0;
        for (; x + kVectorBytes <= pixels; x += kVectorBytes)
            stepInPlace<GreenFirst, RedFirst, Beside::Columns>(rows, x, first, second);
        if (x == pixels)
            return;
        // The last step overlaps the previous one. It starts at an even column, so its last column may be outside the
        // row.
        x = pixels < kVectorBytes ? 0 : (pixels - kVectorBytes + 1) / 2 * 2;
        if (x + kVectorBytes == pixels) {
            stepInPlace<GreenFirst, RedFirst, Beside::Columns>(rows, x, first, second);
        } else {
            std::array<std::uint8_t, kBytesPerBgra * kVectorBytes> firstBuffer;
            std::array<std::uint8_t, kBytesPerBgra * kVectorBytes> secondBuffer;
            bayerStep<GreenFirst, RedFirst, Beside::Columns>(rows, x, firstBuffer.data(), secondBuffer.data());
            std::memcpy(second + kBytesPerBgra * x, secondBuffer.data(), kBytesPerBgra * (pixels - x));
            std::memcpy(first + kBytesPerBgra * x, firstBuffer.data(), kBytesPerBgra * (pixels - x));
        }
    }
};

template <bool GreenFirst, bool RedFirst> struct InImage {
    HWY_INLINE static void run(const BayerRows& rows, std::size_t pixels, std::uint8_t* first, std::uint8_t* second)
    {
        stepInPlace<GreenFirst, RedFirst, Beside::LeftEdge>(rows, 0, first, second);
        const std::size_t last = pixels - kVectorBytes;
        for (std::size_t x = kVectorBytes; x < last; x += kVectorBytes)
            stepInPlace<GreenFirst, RedFirst, Beside::Columns>(rows, x, first, second);
        stepInPlace<GreenFirst, RedFirst, Beside::RightEdge>(rows, last, first, second);
    }
};

template <template <bool, bool> class Way>
HWY_INLINE void overBayerRows(const BayerRows& rows, BayerRow first, std::size_t pixels, std::uint8_t* firstBgra,
                              std::uint8_t* secondBgra)
{
    const BayerRows localRows = rows; // a copy: stores through byte pointers could alias `rows`
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

#include "cameralibs/util/conversion/RowKernels.h"

// Compiles this file once per instruction set that Highway supports on this architecture.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "cameralibs/util/conversion/VectorRowKernels.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

// The vector code needs a vector size that is known at compile time. Other targets use the scalar code.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128 && !HWY_HAVE_SCALABLE
#include "cameralibs/util/conversion/BayerSteps-inl.h"
#include "cameralibs/util/conversion/BgraSteps-inl.h"
#include "cameralibs/util/conversion/SampleSteps-inl.h"
#include "cameralibs/util/conversion/YCbCrSteps-inl.h"
#endif

HWY_BEFORE_NAMESPACE();
namespace cameralibs::HWY_NAMESPACE {

const RowKernels* kernelsOfTarget()
{
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128 && !HWY_HAVE_SCALABLE
    static constexpr RowKernels kKernels{bytesFromSamples, bgraFromGraySamples, bgraFromGray,   bgraFromPixels,
                                         bgraFromWords30,  bgraFromPlanes,      bgraFromGroups, bgraFromSemiplanar,
                                         bgraFromBayer,    bgraFromBayerImage};
    return &kKernels;
#else
    return &scalarRowKernels();
#endif
}

} // namespace cameralibs::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace cameralibs {

HWY_EXPORT(kernelsOfTarget);

const RowKernels& rowKernels() noexcept
{
    return *HWY_DYNAMIC_DISPATCH(kernelsOfTarget)();
}

} // namespace cameralibs

#endif

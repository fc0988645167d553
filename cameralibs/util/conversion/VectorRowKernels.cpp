#include "cameralibs/util/conversion/RowKernels.h"

// Compiles this file once for every instruction set that Highway knows on this architecture.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "cameralibs/util/conversion/VectorRowKernels.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

// The code below needs vectors of a known size. Without one, the plain code serves.
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
    static constexpr RowKernels kernels{bytesFromSamples, bgraFromGraySamples, bgraFromGray,   bgraFromPixels,
                                        bgraFromWords30,  bgraFromPlanes,      bgraFromGroups, bgraFromSemiplanar,
                                        bgraFromBayer,    bgraFromBayerImage};
    return &kernels;
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

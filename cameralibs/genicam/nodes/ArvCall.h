#pragma once

#include "cameralibs/base/ErrorStatus.h"
#include "cameralibs/base/Outcome.h"
#include "cameralibs/genicam/EvaluationBudget.h"

#include <arv.h>

#include <utility>

namespace cameralibs {

/// To be called after each call of Aravis. An evaluation that exceeded its budget fails, whatever its result was; only
/// a lost camera takes precedence.
inline void finishArvCall(Outcome outcome)
{
    if (outcome.status != Orvo::CAM_API_STS_CAMERA_NOT_RESPONDING)
        EvaluationBudget::check();
    throwIfFailed(std::move(outcome));
}

/// Makes `call(GError**)`, which reads, and throws its error as a Failure.
template <class Call> auto arvRead(Call&& call)
{
    GErrorPointer error;
    const auto result = call(error.out());
    finishArvCall(outcomeOf(error, Attempted::reading));
    return result;
}

/// The same for a call that writes.
template <class Call> void arvWrite(Call&& call)
{
    GErrorPointer error;
    static_cast<void>(call(error.out()));
    finishArvCall(outcomeOf(error, Attempted::writing));
}

/// Like arvRead(), but returns `otherwise` if the description does not define the property.
template <class Call, class Result> Result arvReadOr(Result otherwise, Call&& call)
{
    GErrorPointer error;
    const Result result = call(error.out());
    if (g_error_matches(error.get(), ARV_GC_ERROR, ARV_GC_ERROR_PROPERTY_NOT_DEFINED) != FALSE) {
        finishArvCall({});
        return otherwise;
    }
    finishArvCall(outcomeOf(error, Attempted::reading));
    return result;
}

} // namespace cameralibs

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
    GError* error = nullptr;
    const auto result = call(&error);
    finishArvCall(takeError(error, Attempted::reading));
    return result;
}

/// The same for a call that writes.
template <class Call> void arvWrite(Call&& call)
{
    GError* error = nullptr;
    static_cast<void>(call(&error));
    finishArvCall(takeError(error, Attempted::writing));
}

/// Like arvRead(), but returns `otherwise` if the description does not define the property.
template <class Call, class Result> Result arvReadOr(Result otherwise, Call&& call)
{
    GError* error = nullptr;
    const Result result = call(&error);
    if (g_error_matches(error, ARV_GC_ERROR, ARV_GC_ERROR_PROPERTY_NOT_DEFINED) != FALSE) {
        g_error_free(error);
        finishArvCall({});
        return otherwise;
    }
    finishArvCall(takeError(error, Attempted::reading));
    return result;
}

} // namespace cameralibs

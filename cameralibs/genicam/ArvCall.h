#pragma once

#include "cameralibs/genicam/ErrorStatus.h"
#include "cameralibs/genicam/Failure.h"

#include <arv.h>

#include <type_traits>

namespace orvo {

/// `call(GError**)` of Aravis, its error thrown as a Failure.
template <class Call> auto arvCall(Call&& call)
{
    GError* error = nullptr;
    if constexpr (std::is_void_v<decltype(call(&error))>) {
        call(&error);
        throwIfFailed(takeError(error));
    } else {
        const auto result = call(&error);
        throwIfFailed(takeError(error));
        return result;
    }
}

/// The same, with `otherwise` where the description does not define what is asked for.
template <class Call, class Result> Result arvCallOr(Result otherwise, Call&& call)
{
    GError* error = nullptr;
    const Result result = call(&error);
    if (g_error_matches(error, ARV_GC_ERROR, ARV_GC_ERROR_PROPERTY_NOT_DEFINED) != FALSE) {
        g_error_free(error);
        return otherwise;
    }
    throwIfFailed(takeError(error));
    return result;
}

} // namespace orvo

#include "Validator.h"

namespace orvo {

void validate(const Description& description)
{
    checkCategories(description);
    checkEvaluation(description);
}

} // namespace orvo

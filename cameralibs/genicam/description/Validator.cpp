#include "cameralibs/genicam/description/Validator.h"

#include "cameralibs/genicam/description/DescriptionReader.h"

namespace cameralibs {

void validate(Description& description)
{
    checkCategories(description);
    checkRegisters(description);
    checkReferences(description);
    checkFormulas(description);
    checkEvaluation(description);
}

std::shared_ptr<const Description> readDescription(const std::string& xml)
{
    std::shared_ptr<Description> description = DescriptionReader(xml).read();
    validate(*description);
    return description;
}

} // namespace cameralibs

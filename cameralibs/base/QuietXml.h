#pragma once

#include <libxml/xmlerror.h>

namespace cameralibs {

/// While it lives, libxml2 writes nothing to standard error on this thread. XML_PARSE_NOERROR does not cover bytes that
/// cannot be decoded.
class QuietXml {
public:
    QuietXml() { xmlSetGenericErrorFunc(nullptr, &ignore); }
    ~QuietXml() { xmlSetGenericErrorFunc(m_context, m_function); }
    QuietXml(const QuietXml&) = delete;
    QuietXml& operator=(const QuietXml&) = delete;

private:
    static void ignore(void*, const char*, ...) {}

    // The host program's.
    const xmlGenericErrorFunc m_function = xmlGenericError;
    void* const m_context = xmlGenericErrorContext;
};

} // namespace cameralibs

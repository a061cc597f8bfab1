// The reader of cascades in XML, on whatever bytes: it gives a cascade that stages can be made of, or a Failure.
#include "cascade_check.h"
#include "xml_cascade.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    fuzz::expectCascadeOrFailure([&] { return tools::readXmlCascade(text); });
    return 0;
}

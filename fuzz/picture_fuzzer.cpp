// The reader of pictures, on whatever bytes: it gives a picture or a Failure, and nothing else happens.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string_view>

#include "codecs/codec.h"
#include "failure.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    try {
        tools::expectReasonableBeginning(bytes.substr(0, 64));
        const tools::Picture picture = tools::decoded(bytes);
        const std::size_t elements =
            static_cast<std::size_t>(picture.width) * picture.height * picture.channels;
        if (elements == 0 || picture.elements.size() != elements) std::abort();
    } catch (const tools::Failure&) {
    } catch (const std::bad_alloc&) {
    }
    return 0;
}

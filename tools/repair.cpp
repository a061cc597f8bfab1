#include "repair.h"

#include "failure.h"

namespace tools {

Plane<Lum32f> marched(const Picture& mask, float radius) {
    Plane<Lum32f> distances(mask.width, mask.height);
    Lum32s bytes = 0;
    expectOk(lumiFastMarchingGetBufferSize_8u32f_C1R(mask.size(), &bytes),
             "lumiFastMarchingGetBufferSize_8u32f_C1R");
    std::vector<Lum8u> buffer(static_cast<std::size_t>(bytes));
    expectOk(lumiFastMarching_8u32f_C1R(mask.data(), mask.step(), distances.data(), distances.step(),
                                        mask.size(), radius, buffer.data()),
             "lumiFastMarching_8u32f_C1R");
    return distances;
}

Inpainting::Inpainting(const Picture& mask, int channels, float radius, int method) : channels_(channels) {
    const Plane<Lum32f> distances = marched(mask, 0);
    Lum32s stateSize = 0;
    Lum32s bufferSize = 0;
    expectOk(lumiInpaintGetSize(mask.data(), mask.step(), mask.size(), radius, method, channels, &stateSize,
                                &bufferSize),
             "lumiInpaintGetSize");
    if (stateSize < 0 || bufferSize < 0) throw Failure("the hole is too large for this radius");
    state_.resize(static_cast<std::size_t>(stateSize));
    buffer_.resize(static_cast<std::size_t>(bufferSize));
    const auto init = channels == 1 ? lumiInpaintInit_8u_C1R : lumiInpaintInit_8u_C3R;
    expectOk(init(&analysed_, distances.data(), distances.step(), mask.data(), mask.step(), mask.size(),
                  radius, method, state_.data(), buffer_.data()),
             "lumiInpaintInit_8u");
}

Picture Inpainting::repaired(const Picture& picture) {
    Picture result(picture.width, picture.height, picture.channels);
    const auto run = channels_ == 1 ? lumiInpaint_8u_C1R : lumiInpaint_8u_C3R;
    expectOk(run(picture.data(), picture.step(), result.data(), result.step(), picture.size(), analysed_,
                 buffer_.data()),
             "lumiInpaint_8u");
    return result;
}

} // namespace tools

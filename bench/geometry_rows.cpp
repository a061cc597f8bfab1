#include "rows.h"

#include <memory>

namespace bench {
namespace {

/// A wide-angle lens over the scene, the same over pictures of all sizes.
float focal() { return 1400.0F * static_cast<float>(width) / fullSize.width; }
float centreX() { return static_cast<float>(width) / 2; }
float centreY() { return static_cast<float>(height) / 2; }
constexpr float k1 = -0.25F;
constexpr float k2 = 0.07F;

std::vector<Lum8u> undistortBuffer() {
    Lum32s bytes = 0;
    lumiUndistortGetSize(size, &bytes);
    return std::vector<Lum8u>(static_cast<std::size_t>(bytes));
}

template <class T, class Call> Setup correction(Call call, int channels = 1, bool prepared = true) {
    return [call, channels, prepared] {
        struct Images {
            Plane<T> src, dst;
            std::vector<Lum8u> buffer;
        };
        auto images = std::make_shared<Images>(sceneAs<T>(channels), Plane<T>(channels), undistortBuffer());
        return [images, call, prepared] {
            call(images->src.data, images->src.step(), images->dst.data, images->dst.step(), size, focal(),
                 focal(), centreX(), centreY(), k1, k2, prepared ? images->buffer.data() : nullptr);
        };
    };
}

Setup maps(float p1, float p2) {
    return [p1, p2] {
        struct Images {
            Plane<Lum32f> x, y;
            std::vector<Lum8u> buffer = undistortBuffer();
        };
        auto images = std::make_shared<Images>();
        return [images, p1, p2] {
            lumiCreateMapCameraUndistort_32f_C1R(images->x.data, images->x.step(), images->y.data,
                                                 images->y.step(), size, focal(), focal(), centreX(),
                                                 centreY(), k1, k2, p1, p2, images->buffer.data());
        };
    };
}

template <class T, class Call> Setup lineSamples(Call call, int channels = 1) {
    return [call, channels] {
        struct Images {
            Plane<T> src, dst;
        };
        auto images = std::make_shared<Images>(sceneAs<T>(channels), Plane<T>(channels, 1));
        return [images, call] {
            call(images->src.data, images->src.step(), size, images->dst.data, {0, 0},
                 {width - 1, height - 1});
        };
    };
}

const RowFile file([] {
    row("UndistortRadial_8u", correction<Lum8u>(lumiUndistortRadial_8u_C1R));
    row("UndistortRadial_8u_nobuffer", correction<Lum8u>(lumiUndistortRadial_8u_C1R, 1, false));
    row("UndistortRadial_8u_C3", correction<Lum8u>(lumiUndistortRadial_8u_C3R, 3));
    row("UndistortRadial_16u", correction<Lum16u>(lumiUndistortRadial_16u_C1R));
    row("UndistortRadial_16u_C3", correction<Lum16u>(lumiUndistortRadial_16u_C3R, 3));
    row("UndistortRadial_32f", correction<Lum32f>(lumiUndistortRadial_32f_C1R));
    row("UndistortRadial_32f_C3", correction<Lum32f>(lumiUndistortRadial_32f_C3R, 3));
    row("CreateMapCameraUndistort_32f", maps(0, 0));
    row("CreateMapCameraUndistort_32f_tangential", maps(0.001F, -0.002F));
    row("SampleLine_8u", lineSamples<Lum8u>(lumiSampleLine_8u_C1R), width);
    row("SampleLine_32f_C3", lineSamples<Lum32f>(lumiSampleLine_32f_C3R, 3), width);
});

} // namespace

} // namespace bench

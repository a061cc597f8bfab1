#include "tones.h"

namespace tools {

Picture greyOf(const Picture& picture) {
    if (picture.channels == 1) return picture;
    Picture grey(picture.width, picture.height);
    const Lum8u* pixel = picture.data();
    for (Lum8u& value : grey.elements) {
        // Weights of luma in 1/65536; they add up to one.
        value = static_cast<Lum8u>((19595 * pixel[0] + 38470 * pixel[1] + 7471 * pixel[2] + 32768) >> 16);
        pixel += 3;
    }
    return grey;
}

Picture colourOf(const Picture& picture) {
    if (picture.channels == 3) return picture;
    Picture colour(picture.width, picture.height, 3);
    Lum8u* pixel = colour.data();
    for (const Lum8u value : picture.elements) pixel = std::fill_n(pixel, 3, value);
    return colour;
}

Picture shifted(const Picture& picture, int dx, int dy) {
    Picture result(picture.width, picture.height, picture.channels);
    for (int y = 0; y < result.height; ++y)
        for (int x = 0; x < result.width; ++x)
            for (int c = 0; c < result.channels; ++c)
                result.at(x, y, c) = picture.at(std::clamp(x - dx, 0, picture.width - 1),
                                                std::clamp(y - dy, 0, picture.height - 1), c);
    return result;
}

std::array<Lum8u, 3> falseColour(Lum8u place) {
    static constexpr int stretch = 51;
    static constexpr int scale[6][3] = {{36, 10, 66},   {62, 48, 132},  {38, 110, 142},
                                        {34, 164, 132}, {130, 208, 82}, {250, 232, 50}};
    const int left = std::min(place / stretch, 4);
    const int weight = place - left * stretch;
    std::array<Lum8u, 3> colour;
    for (int c = 0; c < 3; ++c)
        colour[c] =
            static_cast<Lum8u>((scale[left][c] * (stretch - weight) + scale[left + 1][c] * weight) / stretch);
    return colour;
}

Picture falseColours(const Picture& grey) {
    Picture result(grey.width, grey.height, 3);
    Lum8u* pixel = result.data();
    for (const Lum8u value : grey.elements) {
        const auto colour = falseColour(value);
        pixel = std::copy(colour.begin(), colour.end(), pixel);
    }
    return result;
}

} // namespace tools

// Pictures with holes, repaired.
#pragma once

#include "picture.h"

namespace tools {

/// The distances of a mask's pixels from its edge, and of those around it up to the radius as negative numbers.
Plane<Lum32f> marched(const Picture& mask, float radius);

/// A mask analysed for pictures of one kind; the mask is grey and selects what is not 0.
class Inpainting {
  public:
    /// A method of lumInpaintFront and lumInpaintIsophote; 1 or 3 channels.
    Inpainting(const Picture& mask, int channels, float radius, int method);

    /// The picture with the pixels of the mask repaired.
    Picture repaired(const Picture& picture);

  private:
    int channels_;
    std::vector<Lum8u> state_;
    std::vector<Lum8u> buffer_;
    LumInpaintState* analysed_ = nullptr;
};

} // namespace tools

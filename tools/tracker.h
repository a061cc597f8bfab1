// Points of one picture found again in another one of the same size.
#pragma once

#include <vector>

#include "lumcv.h"
#include "picture.h"

namespace tools {

struct Track {
    LumPoint32f from;
    LumPoint32f to;
    /// Root of the mean squared difference of the windows, in grey levels.
    float error;
};

/// Well textured points of a grey picture, the best one of each square of `spacing` pixels, in rows from the top.
std::vector<LumPoint32f> texturedPoints(const Picture& grey, int spacing);

struct Tracking {
    /// The points that were found again.
    std::vector<Track> tracks;
    /// One call for all points.
    double milliseconds;
};

/// Follows points from one grey picture to the other on pyramids of four levels.
Tracking followPoints(const Picture& before, const Picture& after, const std::vector<LumPoint32f>& points);

/// Draws each track as an arrow, in the colour of its direction.
void drawTracks(Picture& colour, const std::vector<Track>& tracks);

} // namespace tools

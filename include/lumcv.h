/**
 * @file
 * lumCV: computer-vision primitives on image regions that stay in the caller's memory.
 *
 * The library keeps no state between calls, allocates nothing and starts no threads. An image is never an
 * object: it is a pointer to the first pixel of a region, a step (the positive number of bytes from the
 * start of a row to that of the next) and a size, passed with each call. Every function but lumcvGetLibVersion() returns a
 * LumStatus: 0 is success, a positive value a warning (the outputs are valid), a negative value an error
 * (nothing was written, unless the function says otherwise).
 *
 * Arguments are tested in one order, and the first failure is returned: required pointers, width and height,
 * steps against their rows, alignment of the steps, then what is particular to the function. Where a function
 * departs from it, its own list of statuses says so.
 *
 * The header is C99 and C++. Names: lumi + operation + type tokens (source, then destination) + layout: C1, C3,
 * C4 the channels, C3C three channels with a channel of interest, I in place, M with a mask, R on a region, Sfs
 * with a scale factor; _L with pointer-wide sizes and steps.
 */
#ifndef LUMCV_H
#define LUMCV_H

#include "lumcv/accumulate.h"
#include "lumcv/background.h"
#include "lumcv/border.h"
#include "lumcv/canny.h"
#include "lumcv/corner.h"
#include "lumcv/difference.h"
#include "lumcv/distance.h"
#include "lumcv/extreme.h"
#include "lumcv/fast.h"
#include "lumcv/fast_marching.h"
#include "lumcv/fixed_filter.h"
#include "lumcv/flood_fill.h"
#include "lumcv/gaussian.h"
#include "lumcv/geometry.h"
#include "lumcv/haar.h"
#include "lumcv/hough.h"
#include "lumcv/inpaint.h"
#include "lumcv/integral.h"
#include "lumcv/label.h"
#include "lumcv/mean.h"
#include "lumcv/morph.h"
#include "lumcv/morph_compound.h"
#include "lumcv/morph_compound_long.h"
#include "lumcv/morph_object.h"
#include "lumcv/morph_reconstruct.h"
#include "lumcv/motion_history.h"
#include "lumcv/norm.h"
#include "lumcv/optical_flow.h"
#include "lumcv/peak.h"
#include "lumcv/pipeline.h"
#include "lumcv/pyramid.h"
#include "lumcv/pyramid_layer.h"
#include "lumcv/segment_gradient.h"
#include "lumcv/separable.h"
#include "lumcv/status.h"
#include "lumcv/subpix.h"
#include "lumcv/true_distance.h"
#include "lumcv/types.h"
#include "lumcv/version.h"
#include "lumcv/watershed.h"

#endif

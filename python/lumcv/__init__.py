"""Computer-vision primitives on NumPy arrays, which are never copied.

An image is an array of two dimensions (height, width) or of three (height, width, channels); any view whose rows lie in
order and whose pixels adjoin will do. Its element type and its channels choose the function that runs. Every function
takes `out=` for an array of its result where it makes one; borders, masks and defaults are keyword arguments.

`lumcv.raw` has the library's own functions, `lumcv.tiles` runs operations in tiles of large arrays and memory maps, and
`lumcv.dask` on the chunks of dask arrays.
"""

from ._array import Region
from ._status import Error, StatusWarning
from ._version import VERSION as __version__
from .families.accumulate import (
    accumulate,
    accumulate_product,
    accumulate_square,
    accumulate_weighted,
    add_weighted,
)
from .families.canny import canny, canny_derivatives
from .families.corner import eigen_vectors, find_peaks, harris, line_suppression, min_eigen
from .families.difference import absdiff
from .families.distance import distance, distance_steps, fast_marching, true_distance
from .families.fast import fast_corners, fast_marks
from .families.fill import Filled, flood_fill, label, mark_speckles
from .families.fixed_filter import gradient_to_gray, laplacian, lowpass, sobel, sobel_kernel
from .families.flow import Flow, optical_flow
from .families.gaussian import Gaussian, gaussian
from .families.geometry import sample_line, undistort, undistort_map
from .families.grey_morph import gray_dilate, gray_erode, morph_reconstruct
from .families.haar import Classifier, HaarCascade, HaarStage
from .families.hough import hough_lines, hough_segments
from .families.inpaint import Inpainter, inpaint
from .families.integral import integral, rect_stddev, tilted_integral
from .families.morph import (
    StructuringElement,
    dilate,
    erode,
    morph_blackhat,
    morph_close,
    morph_gradient,
    morph_open,
    morph_tophat,
)
from .families.motion import BackgroundModel, BackgroundParameters, MotionHistory
from .families.norms import norm
from .families.pyramid import pyramid, pyramid_down, pyramid_size_down, pyramid_size_up, pyramid_up
from .families.segment import bound_segments, segment_gradient, watershed
from .families.separable import Separable, separable
from .families.stats import Extremes, MeanStdDev, mean, mean_stddev, min_max
from .families.subpix import Patch, copy_patch, copy_subpix

__all__ = [
    "BackgroundModel",
    "BackgroundParameters",
    "Classifier",
    "Error",
    "Extremes",
    "Filled",
    "Flow",
    "Gaussian",
    "HaarCascade",
    "HaarStage",
    "Inpainter",
    "MeanStdDev",
    "MotionHistory",
    "Patch",
    "Region",
    "Separable",
    "StatusWarning",
    "StructuringElement",
    "absdiff",
    "accumulate",
    "accumulate_product",
    "accumulate_square",
    "accumulate_weighted",
    "add_weighted",
    "bound_segments",
    "canny",
    "canny_derivatives",
    "copy_patch",
    "copy_subpix",
    "dilate",
    "distance",
    "distance_steps",
    "eigen_vectors",
    "erode",
    "fast_corners",
    "fast_marching",
    "fast_marks",
    "find_peaks",
    "flood_fill",
    "gaussian",
    "gradient_to_gray",
    "gray_dilate",
    "gray_erode",
    "harris",
    "hough_lines",
    "hough_segments",
    "inpaint",
    "integral",
    "label",
    "laplacian",
    "line_suppression",
    "lowpass",
    "mark_speckles",
    "mean",
    "mean_stddev",
    "min_eigen",
    "min_max",
    "morph_blackhat",
    "morph_close",
    "morph_gradient",
    "morph_open",
    "morph_reconstruct",
    "morph_tophat",
    "norm",
    "optical_flow",
    "pyramid",
    "pyramid_down",
    "pyramid_size_down",
    "pyramid_size_up",
    "pyramid_up",
    "rect_stddev",
    "sample_line",
    "segment_gradient",
    "separable",
    "sobel",
    "sobel_kernel",
    "tilted_integral",
    "true_distance",
    "undistort",
    "undistort_map",
    "watershed",
]

// The order of checks of the calls that write an integral of squares beside that of pixels.
#pragma once

#include "support/guarded_image.h"
#include "support/status_checks.h"

/// `call` is a member of either shape; its results have `extra` columns and rows more than the source.
template <class Sum, class Square, class Call> void expectSqrIntegralChecks(Call call, int extra) {
    using support::GuardedImage;
    GuardedImage<Lum8u> src(4, 2);
    GuardedImage<Sum> dst(4 + extra, 2 + extra);
    GuardedImage<Square> sqr(4 + extra, 2 + extra);
    const int dstStep = dst.step();
    const int sqrStep = sqr.step();
    const auto expectRefused = [&](LumStatus status, const Lum8u* s, int sStep, Sum* d, int dStep, Square* q,
                                   int qStep, LumSize size) {
        EXPECT_REFUSED(status, dst, call(s, sStep, d, dStep, q, qStep, size, Sum{1}, Square{2}));
        EXPECT_TRUE(sqr.untouched());
    };
    const LumSize size = src.size();
    expectRefused(lumStatusNullPointer, nullptr, 4, dst.data(), dstStep, sqr.data(), sqrStep, {0, 0});
    expectRefused(lumStatusNullPointer, src.data(), 4, nullptr, dstStep, sqr.data(), sqrStep, {0, 0});
    expectRefused(lumStatusNullPointer, src.data(), 4, dst.data(), dstStep, nullptr, sqrStep, {0, 0});
    for (LumSize empty : {LumSize{0, 2}, LumSize{4, 0}, LumSize{-4, 2}, LumSize{4, -2}})
        expectRefused(lumStatusSizeError, src.data(), 0, dst.data(), 1, sqr.data(), 1, empty);
    expectRefused(lumStatusStepError, src.data(), 3, dst.data(), dstStep, sqr.data(), sqrStep, size);
    expectRefused(lumStatusStepError, src.data(), 4, dst.data(), dstStep - 1, sqr.data(), sqrStep, size);
    // All steps come before all alignments.
    expectRefused(lumStatusStepError, src.data(), 4, dst.data(), dstStep + 1, sqr.data(), sqrStep - 1, size);
    expectRefused(lumStatusStepAlignmentError, src.data(), 4, dst.data(), dstStep + 2, sqr.data(), sqrStep,
                  size);
    expectRefused(lumStatusStepAlignmentError, src.data(), 4, dst.data(), dstStep, sqr.data(),
                  sqrStep + static_cast<int>(sizeof(Square)) / 2, size);
    EXPECT_STATUS(lumStatusOk,
                  call(src.data(), 4, dst.data(), dstStep, sqr.data(), sqrStep, size, Sum{1}, Square{2}));
}

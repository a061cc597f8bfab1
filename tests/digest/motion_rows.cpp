#include <cstring>
#include <vector>

#include "digest/digest.h"

namespace digest {
namespace {

// ---- subpixel sampling

constexpr float fractions[] = {0, 0.3F, -0.45F, 0.999F};

/// member(src, srcStep, dst, dstStep, size, dx, dy)
template <class S, class D, class Member> Run patchInside(Member member) {
    return [=](Digest& digest, const Case& c) {
        Picture<S> src({c.size.width + 1, c.size.height + 1}, 1, c.offset);
        src.fill(c.seed);
        for (float f : fractions) {
            Picture<D> dst(c.size);
            digest.add(member(src.data(), src.step(), dst.data(), dst.step(), c.size, f, 0.6F - f));
            dst.addTo(digest);
        }
    };
}

/// member(src, srcStep, srcSize, dst, dstStep, dstSize, point, first, last)
template <class S, class D, class Member> Run patchAround(Member member) {
    return [=](Digest& digest, const Case& c) {
        Picture<S> src(c.size, 1, c.offset);
        src.fill(c.seed);
        const auto w = static_cast<float>(c.size.width);
        const auto h = static_cast<float>(c.size.height);
        for (LumPoint32f point :
             {LumPoint32f{w / 2, h / 2}, {0.3F, 1.7F}, {w, h - 1}, {-2.2F, h + 5}, {3 * w, -100}}) {
            Picture<D> dst({21, 13});
            LumPoint first{}, last{};
            digest.add(member(src.data(), src.step(), c.size, dst.data(), dst.step(), dst.size(), point,
                              &first, &last));
            dst.addTo(digest);
            for (int value : {first.x, first.y, last.x, last.y}) digest.add(value);
        }
    };
}

LumStatus insideScaled(const Lum8u* src, int srcStep, Lum16u* dst, int dstStep, LumSize size, float dx,
                       float dy) {
    return lumiCopySubpix_8u16u_C1R_Sfs(src, srcStep, dst, dstStep, size, dx, dy, -5);
}
LumStatus aroundScaled(const Lum8u* src, int srcStep, LumSize srcSize, Lum16u* dst, int dstStep,
                       LumSize dstSize, LumPoint32f point, LumPoint* first, LumPoint* last) {
    return lumiCopySubpixIntersect_8u16u_C1R_Sfs(src, srcStep, srcSize, dst, dstStep, dstSize, point, first,
                                                 last, -5);
}

// ---- motion history

template <class T, class Member> Run history(Member member) {
    return [=](Digest& digest, const Case& c) {
        Picture<T> silhouette(c.size, 1, c.offset);
        silhouette.fill(c.seed);
        Picture<Lum32f> mhi(c.size);
        mhi.fill(c.seed + 1);
        for (int y = 0; y < c.size.height; ++y)
            for (int x = 0; x < c.size.width; ++x)
                if ((x + y) % 3 != 0) silhouette.row(y)[x] = 0;
        digest.add(
            member(silhouette.data(), silhouette.step(), mhi.data(), mhi.step(), c.size, 120.0F, 60.5F));
        mhi.addTo(digest);
    };
}

// ---- background

constexpr LumFGMMParams params{.history = 20,
                               .mixtures = 3,
                               .varInit = 100,
                               .varMin = 4,
                               .varMax = 900,
                               .matchBackground = 16,
                               .backgroundRatio = 0.8F,
                               .matchGenerate = 9,
                               .complexityPrior = 0.05F,
                               .shadowValue = 127,
                               .shadowEnabled = 1,
                               .shadowRatio = 0.5F};

/// A model after some frames, of which each is told.
class Model {
  public:
    explicit Model(LumSize size) : size_(size) {
        lumiFGMMGetBufferSize_8u_C3R(size, 3, &bytes);
        memory_ = Memory(bytes);
        status = lumiFGMMInit_8u_C3R(size, 3, &params, state());
    }
    void see(const Case& c, int frame, Digest& digest) {
        Picture<Lum8u> picture(size_, 3, c.offset), result(size_);
        picture.fill(c.seed + frame / 3);
        digest.add(lumiFGMMForeground_8u_C3R(picture.data(), picture.step(), result.data(), result.step(),
                                             size_, state(), nullptr, frame % 4 == 3 ? 0.125 : -1));
        result.addTo(digest);
    }
    void drawBackground(Digest& digest) {
        Picture<Lum8u> picture(size_, 3);
        digest.add(lumiFGMMBackground_8u_C3R(picture.data(), picture.step(), size_, state()));
        picture.addTo(digest);
    }

    Lum32s bytes = 0;
    LumStatus status;

  private:
    LumFGMMState* state() { return reinterpret_cast<LumFGMMState*>(memory_.data()); }

    LumSize size_;
    Memory memory_;
};

// ---- optical flow

using Init = LumStatus (*)(LumOpticalFlowState**, LumSize, int, LumHint, Lum8u*);

template <class T, class Member> Run flow(LumDataType type, Init init, Member member, bool runs) {
    return [=](Digest& digest, const Case& c) {
        constexpr int winSize = 7;
        Picture<T> fine[2] = {Picture<T>(c.size, 1, c.offset), Picture<T>(c.size, 1, c.offset)};
        const LumSize half{(c.size.width + 1) / 2, (c.size.height + 1) / 2};
        Picture<T> coarse[2] = {Picture<T>(half), Picture<T>(half)};
        LumSize rois[] = {c.size, half};
        Lum64f rates[] = {1, 0.5};
        void* images[2][2];
        Lum32s steps[2][2];
        // Tests compare the bytes of all records that a call may reach, padding included.
        LumPyramid pyramids[2];
        std::memset(pyramids, 0, sizeof pyramids);
        for (int i = 0; i < 2; ++i) {
            fine[i].fill(c.seed + i);
            coarse[i].fill(c.seed + i);
            images[i][0] = fine[i].data(), images[i][1] = coarse[i].data();
            steps[i][0] = fine[i].step(), steps[i][1] = coarse[i].step();
            pyramids[i].images = images[i], pyramids[i].steps = steps[i];
            pyramids[i].rois = rois, pyramids[i].rates = rates;
            pyramids[i].level = 1;
        }
        // Levels as a whole, windows alone, and one of each.
        for (LumSize region : {LumSize{c.size.width + 1, c.size.height + 1}, {1, 1}, c.size}) {
            Lum32s bytes = 0;
            lumiOpticalFlowPyrLKGetSize(winSize, region, type, 0, &bytes);
            Memory memory(bytes);
            LumOpticalFlowState* state = nullptr;
            digest.add(init(&state, region, winSize, 0, memory.data()));
            if (!runs) continue;
            std::vector<LumPoint32f> from, to;
            for (int i = 0; i < 24; ++i)
                from.push_back({static_cast<float>(i * 37 % (c.size.width + 3)),
                                static_cast<float>(i * 23 % (c.size.height + 3)) + 0.25F});
            to = from;
            std::vector<Lum8s> status(from.size());
            std::vector<Lum32f> error(from.size());
            digest.add(member(&pyramids[0], &pyramids[1], from.data(), to.data(), status.data(), error.data(),
                              static_cast<int>(from.size()), winSize, 1, 12, 0.01F, state));
            for (std::size_t i = 0; i < from.size(); ++i) {
                digest.add(to[i].x);
                digest.add(to[i].y);
                digest.add(status[i]);
                digest.add(error[i]);
            }
        }
    };
}

const RowFile file("motion", [] {
    row("lumiCopySubpix_8u_C1R", patchInside<Lum8u, Lum8u>(lumiCopySubpix_8u_C1R));
    row("lumiCopySubpix_8u16u_C1R_Sfs", patchInside<Lum8u, Lum16u>(insideScaled));
    row("lumiCopySubpix_16u_C1R", patchInside<Lum16u, Lum16u>(lumiCopySubpix_16u_C1R));
    row("lumiCopySubpix_8u32f_C1R", patchInside<Lum8u, Lum32f>(lumiCopySubpix_8u32f_C1R));
    row("lumiCopySubpix_16u32f_C1R", patchInside<Lum16u, Lum32f>(lumiCopySubpix_16u32f_C1R));
    row("lumiCopySubpix_32f_C1R", patchInside<Lum32f, Lum32f>(lumiCopySubpix_32f_C1R));
    row("lumiCopySubpixIntersect_8u_C1R", patchAround<Lum8u, Lum8u>(lumiCopySubpixIntersect_8u_C1R));
    row("lumiCopySubpixIntersect_8u16u_C1R_Sfs", patchAround<Lum8u, Lum16u>(aroundScaled));
    row("lumiCopySubpixIntersect_16u_C1R", patchAround<Lum16u, Lum16u>(lumiCopySubpixIntersect_16u_C1R));
    row("lumiCopySubpixIntersect_8u32f_C1R", patchAround<Lum8u, Lum32f>(lumiCopySubpixIntersect_8u32f_C1R));
    row("lumiCopySubpixIntersect_16u32f_C1R",
        patchAround<Lum16u, Lum32f>(lumiCopySubpixIntersect_16u32f_C1R));
    row("lumiCopySubpixIntersect_32f_C1R", patchAround<Lum32f, Lum32f>(lumiCopySubpixIntersect_32f_C1R));

    row("lumiUpdateMotionHistory_8u32f_C1IR", history<Lum8u>(lumiUpdateMotionHistory_8u32f_C1IR));
    row("lumiUpdateMotionHistory_16u32f_C1IR", history<Lum16u>(lumiUpdateMotionHistory_16u32f_C1IR));
    row("lumiUpdateMotionHistory_32f_C1IR", history<Lum32f>(lumiUpdateMotionHistory_32f_C1IR));

    row("lumiFGMMGetBufferSize_8u_C3R",
        [](Digest& digest, const Case& c) { digest.add(Model(c.size).bytes); });
    row("lumiFGMMInit_8u_C3R", [](Digest& digest, const Case& c) { digest.add(Model(c.size).status); });
    row("lumiFGMMForeground_8u_C3R", [](Digest& digest, const Case& c) {
        Model model(c.size);
        for (int frame = 0; frame < 12; ++frame) model.see(c, frame, digest);
    });
    row("lumiFGMMBackground_8u_C3R", [](Digest& digest, const Case& c) {
        Model model(c.size);
        Digest frames;
        for (int frame = 0; frame < 12; ++frame) {
            model.see(c, frame, frames);
            model.drawBackground(digest);
        }
    });

    row("lumiOpticalFlowPyrLKGetSize", [](Digest& digest, const Case& c) {
        for (LumDataType type : {lumType8u, lumType16u, lumType32f})
            for (int winSize : {1, 7, 21}) {
                Lum32s bytes = 0;
                digest.add(lumiOpticalFlowPyrLKGetSize(winSize, c.size, type, 0, &bytes));
                digest.add(bytes);
            }
    });
    for (bool runs : {false, true}) {
        row(runs ? "lumiOpticalFlowPyrLK_8u_C1R" : "lumiOpticalFlowPyrLKInit_8u_C1R",
            flow<Lum8u>(lumType8u, lumiOpticalFlowPyrLKInit_8u_C1R, lumiOpticalFlowPyrLK_8u_C1R, runs));
        row(runs ? "lumiOpticalFlowPyrLK_16u_C1R" : "lumiOpticalFlowPyrLKInit_16u_C1R",
            flow<Lum16u>(lumType16u, lumiOpticalFlowPyrLKInit_16u_C1R, lumiOpticalFlowPyrLK_16u_C1R, runs));
        row(runs ? "lumiOpticalFlowPyrLK_32f_C1R" : "lumiOpticalFlowPyrLKInit_32f_C1R",
            flow<Lum32f>(lumType32f, lumiOpticalFlowPyrLKInit_32f_C1R, lumiOpticalFlowPyrLK_32f_C1R, runs));
    }
});

} // namespace
} // namespace digest

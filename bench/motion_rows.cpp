#include "rows.h"

#include <memory>

namespace bench {
namespace {

constexpr int patches = 1000;
constexpr int side = 65;
constexpr double pixelsOfPatches = double{patches} * side * side;

/// Where patch i lies: spread over the picture, never at its edges.
LumPoint placeOf(int i) {
    const int margin = height < fullSize.height ? 40 : 100;
    return {margin + i * 379 % (width - 2 * margin - side), margin + i * 241 % (height - 2 * margin - side)};
}

template <class S, class D, class Member> Setup patchesInside(Member member) {
    return [member] {
        auto src = std::make_shared<Plane<S>>(sceneAs<S>());
        auto dst = std::make_shared<Plane<D>>(1, side, side);
        return [=] {
            for (int i = 0; i < patches; ++i) {
                const LumPoint place = placeOf(i);
                member(src->data + place.y * width + place.x, src->step(), dst->data, dst->step(),
                       {side, side}, static_cast<float>(i % 7) / 7, static_cast<float>(i % 11) / 11);
            }
        };
    };
}

/// Every fourth patch hangs over an edge.
template <class S, class D, class Member> Setup patchesAround(Member member) {
    return [member] {
        auto src = std::make_shared<Plane<S>>(sceneAs<S>());
        auto dst = std::make_shared<Plane<D>>(1, side, side);
        return [=] {
            for (int i = 0; i < patches; ++i) {
                const LumPoint place = placeOf(i);
                LumPoint32f point{static_cast<float>(place.x) + static_cast<float>(i % 7) / 7,
                                  static_cast<float>(place.y) + static_cast<float>(i % 11) / 11};
                if (i % 8 == 0) point.x = 10;
                if (i % 8 == 4) point.y = height - 10;
                LumPoint first, last;
                member(src->data, src->step(), size, dst->data, dst->step(), {side, side}, point, &first,
                       &last);
            }
        };
    };
}

LumStatus insideUnscaled(const Lum8u* src, int srcStep, Lum16u* dst, int dstStep, LumSize roiSize, Lum32f dx,
                         Lum32f dy) {
    return lumiCopySubpix_8u16u_C1R_Sfs(src, srcStep, dst, dstStep, roiSize, dx, dy, -7);
}
LumStatus aroundUnscaled(const Lum8u* src, int srcStep, LumSize srcSize, Lum16u* dst, int dstStep,
                         LumSize dstSize, LumPoint32f point, LumPoint* first, LumPoint* last) {
    return lumiCopySubpixIntersect_8u16u_C1R_Sfs(src, srcStep, srcSize, dst, dstStep, dstSize, point, first,
                                                 last, -7);
}

/// The whole picture at a fractional position.
template <class S, class D, class Member> Setup wholePicture(Member member) {
    return [member] {
        auto src = std::make_shared<Plane<S>>(sceneAs<S>());
        auto dst = std::make_shared<Plane<D>>();
        return [=] {
            member(src->data, src->step(), dst->data, dst->step(), {width - 1, height - 1}, 0.3F, 0.6F);
        };
    };
}

template <class T, class Member> Setup history(Member member) {
    return [member] {
        auto silhouette = std::make_shared<Plane<T>>();
        const Plane<Lum8u> selected = mask(20);
        for (int i = 0; i < pixels; ++i) silhouette->data[i] = static_cast<T>(selected.data[i]);
        auto mhi = std::make_shared<Plane<Lum32f>>();
        auto frame = std::make_shared<int>(0);
        return [=] {
            member(silhouette->data, silhouette->step(), mhi->data, mhi->step(), size,
                   static_cast<float>(++*frame), 20.0F);
        };
    };
}

// ---- background

constexpr LumFGMMParams backgroundParams{.history = 500,
                                         .mixtures = 5,
                                         .varInit = 15,
                                         .varMin = 4,
                                         .varMax = 75,
                                         .matchBackground = 16,
                                         .backgroundRatio = 0.9F,
                                         .matchGenerate = 9,
                                         .complexityPrior = 0.05F,
                                         .shadowValue = 127,
                                         .shadowEnabled = 1,
                                         .shadowRatio = 0.5F};

struct Video {
    /// Three channels; the second frame is moved by a few pixels.
    Plane<Lum8u> frames[2] = {sceneAs<Lum8u>(3), sceneAs<Lum8u>(3, true)};
    Plane<Lum8u> result;
    Plane<Lum8u> picture{3};
    std::vector<unsigned char> block;
    int count = 0;

    Video() {
        Lum32s bytes = 0;
        lumiFGMMGetBufferSize_8u_C3R(size, backgroundParams.mixtures, &bytes);
        block.resize(bytes);
        lumiFGMMInit_8u_C3R(size, backgroundParams.mixtures, &backgroundParams, state());
        for (int i = 0; i < 10; ++i) next();
    }
    LumFGMMState* state() { return reinterpret_cast<LumFGMMState*>(block.data()); }
    /// Most frames are the first one.
    void next() {
        const Plane<Lum8u>& frame = frames[count++ % 5 == 4];
        lumiFGMMForeground_8u_C3R(frame.data, frame.step(), result.data, result.step(), size, state(),
                                  nullptr, -1);
    }
};

std::function<void()> foreground() {
    auto video = std::make_shared<Video>();
    return [video] { video->next(); };
}

std::function<void()> background() {
    auto video = std::make_shared<Video>();
    return [video] {
        lumiFGMMBackground_8u_C3R(video->picture.data, video->picture.step(), size, video->state());
    };
}

// ---- flow

constexpr int levels = 4;
constexpr int window = 21;
constexpr int points = 1000;

/// Pyramids of the scene and of the moved one, each level the mean of two by two pixels of the one before it.
template <class T> struct Pyramids {
    struct One {
        std::vector<Plane<T>> planes;
        std::vector<void*> images;
        std::vector<LumSize> rois;
        std::vector<Lum64f> rates;
        std::vector<Lum32s> steps;
        LumPyramid record;

        explicit One(bool moved) {
            planes.push_back(sceneAs<T>(1, moved));
            for (int k = 0; k < levels; ++k) {
                const LumSize roi{width >> k, height >> k};
                if (k > 0) planes.push_back(halved(planes.back(), roi));
                images.push_back(planes.back().data);
                rois.push_back(roi);
                rates.push_back(1.0 / (1 << k));
                steps.push_back(planes.back().step());
            }
            record = {images.data(), rois.data(), rates.data(), steps.data(), nullptr, levels - 1};
        }
        static Plane<T> halved(const Plane<T>& large, LumSize roi) {
            Plane<T> small(1, roi.height, roi.width);
            const int wide = large.step() / static_cast<int>(sizeof(T));
            for (int y = 0; y < roi.height; ++y)
                for (int x = 0; x < roi.width; ++x) {
                    const T* p = large.data + 2 * y * wide + 2 * x;
                    small.data[y * roi.width + x] =
                        static_cast<T>((p[0] + p[1] + p[wide] + p[wide + 1] + 2) / 4);
                }
            return small;
        }
    };
    One before{false};
    One after{true};
    std::vector<LumPoint32f> prev;
    std::vector<LumPoint32f> next = std::vector<LumPoint32f>(points);
    std::vector<Lum8s> status = std::vector<Lum8s>(points);
    std::vector<Lum32f> error = std::vector<Lum32f>(points);
    std::vector<unsigned char> memory;
    LumOpticalFlowState* state = nullptr;

    Pyramids() {
        for (int i = 0; i < points; ++i) {
            const LumPoint place = placeOf(i);
            prev.push_back({static_cast<float>(place.x), static_cast<float>(place.y)});
        }
    }
};

template <class T, class Init, class Member>
Setup flow(LumDataType type, Init init, Member member, LumSize smallLevels) {
    return [=] {
        auto p = std::make_shared<Pyramids<T>>();
        Lum32s bytes = 0;
        lumiOpticalFlowPyrLKGetSize(window, smallLevels, type, 0, &bytes);
        p->memory.resize(bytes);
        init(&p->state, smallLevels, window, 0, p->memory.data());
        return [=] {
            p->next = p->prev;
            member(&p->before.record, &p->after.record, p->prev.data(), p->next.data(), p->status.data(),
                   p->error.data(), points, window, levels - 1, 30, 0.01F, p->state);
        };
    };
}

const RowFile file([] {
    row("CopySubpix_8u32f_65x65", patchesInside<Lum8u, Lum32f>(lumiCopySubpix_8u32f_C1R), pixelsOfPatches);
    row("CopySubpix_8u_65x65", patchesInside<Lum8u, Lum8u>(lumiCopySubpix_8u_C1R), pixelsOfPatches);
    row("CopySubpix_8u16u_Sfs_65x65", patchesInside<Lum8u, Lum16u>(insideUnscaled), pixelsOfPatches);
    row("CopySubpix_16u_65x65", patchesInside<Lum16u, Lum16u>(lumiCopySubpix_16u_C1R), pixelsOfPatches);
    row("CopySubpix_16u32f_65x65", patchesInside<Lum16u, Lum32f>(lumiCopySubpix_16u32f_C1R), pixelsOfPatches);
    row("CopySubpix_32f_65x65", patchesInside<Lum32f, Lum32f>(lumiCopySubpix_32f_C1R), pixelsOfPatches);
    row("CopySubpix_8u_picture", wholePicture<Lum8u, Lum8u>(lumiCopySubpix_8u_C1R));
    row("CopySubpix_8u32f_picture", wholePicture<Lum8u, Lum32f>(lumiCopySubpix_8u32f_C1R));
    row("CopySubpixIntersect_8u32f_65x65", patchesAround<Lum8u, Lum32f>(lumiCopySubpixIntersect_8u32f_C1R),
        pixelsOfPatches);
    row("CopySubpixIntersect_8u_65x65", patchesAround<Lum8u, Lum8u>(lumiCopySubpixIntersect_8u_C1R),
        pixelsOfPatches);
    row("CopySubpixIntersect_8u16u_Sfs_65x65", patchesAround<Lum8u, Lum16u>(aroundUnscaled), pixelsOfPatches);
    row("CopySubpixIntersect_16u_65x65", patchesAround<Lum16u, Lum16u>(lumiCopySubpixIntersect_16u_C1R),
        pixelsOfPatches);
    row("CopySubpixIntersect_32f_65x65", patchesAround<Lum32f, Lum32f>(lumiCopySubpixIntersect_32f_C1R),
        pixelsOfPatches);

    row("OpticalFlowPyrLK_8u_1000pts_w21_l3",
        flow<Lum8u>(lumType8u, lumiOpticalFlowPyrLKInit_8u_C1R, lumiOpticalFlowPyrLK_8u_C1R, size));
    row("OpticalFlowPyrLK_8u_1000pts_w21_l3_windows",
        flow<Lum8u>(lumType8u, lumiOpticalFlowPyrLKInit_8u_C1R, lumiOpticalFlowPyrLK_8u_C1R, {1, 1}));
    row("OpticalFlowPyrLK_16u_1000pts_w21_l3",
        flow<Lum16u>(lumType16u, lumiOpticalFlowPyrLKInit_16u_C1R, lumiOpticalFlowPyrLK_16u_C1R, size));
    row("OpticalFlowPyrLK_32f_1000pts_w21_l3",
        flow<Lum32f>(lumType32f, lumiOpticalFlowPyrLKInit_32f_C1R, lumiOpticalFlowPyrLK_32f_C1R, size));

    row("UpdateMotionHistory_8u32f", history<Lum8u>(lumiUpdateMotionHistory_8u32f_C1IR));
    row("UpdateMotionHistory_16u32f", history<Lum16u>(lumiUpdateMotionHistory_16u32f_C1IR));
    row("UpdateMotionHistory_32f", history<Lum32f>(lumiUpdateMotionHistory_32f_C1IR));

    row("FGMMForeground_8u_C3", foreground);
    row("FGMMBackground_8u_C3", background);
});

} // namespace

} // namespace bench

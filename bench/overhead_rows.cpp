// What a call costs besides its pixels: the members that stream over a picture, on a region of 8 x 8.
#include <memory>

#include "rows.h"

namespace bench {
namespace {

constexpr LumSize region{8, 8};
constexpr int planeWidth = 64;

/// The images that a call takes; those it does not take are left alone.
template <class T> struct Images {
    Plane<T> a = ofRegion(), b = ofRegion(), dst = ofRegion();
    Plane<Lum32f> sum{1, region.height, planeWidth};
    Plane<Lum8u> selected{1, region.height, planeWidth};
    Lum64f first = 0, second = 0;
    Lum32f least = 0, most = 0;
    LumPoint leastAt{}, mostAt{};

    Images() {
        for (int i = 0; i < a.count(); ++i) {
            a.data[i] = static_cast<T>(i * 7 % 251);
            b.data[i] = static_cast<T>(i * 11 % 241);
        }
        for (int i = 0; i < selected.count(); ++i) selected.data[i] = i % 3 == 0 ? 0 : 255;
    }
    static Plane<T> ofRegion() { return Plane<T>(3, region.height, planeWidth); }
};

template <class T, class Call> void callRow(const std::string& name, Call call) {
    const auto setup = [call] {
        auto images = std::make_shared<Images<T>>();
        return [images, call] { call(*images); };
    };
    row(name, setup, 1);
}

template <class T, class Plain, class Constant>
void differences(const std::string& type, Plain plain, Constant constant) {
    callRow<T>("AbsDiff_" + type, [plain](Images<T>& i) {
        plain(i.a.data, i.a.step(), i.b.data, i.b.step(), i.dst.data, i.dst.step(), region);
    });
    callRow<T>("AbsDiffC_" + type, [constant](Images<T>& i) {
        constant(i.a.data, i.a.step(), i.dst.data, i.dst.step(), region, 100);
    });
}

template <class T, class Member> void sumOf(const std::string& name, Member member) {
    callRow<T>(name,
               [member](Images<T>& i) { member(i.a.data, i.a.step(), i.sum.data, i.sum.step(), region); });
}

template <class T, class Member> void deviation(const std::string& name, Member member) {
    callRow<T>(name, [member](Images<T>& i) { member(i.a.data, i.a.step(), region, &i.first, &i.second); });
}

/// A mean or a norm under a mask.
template <class T, class Member> void valueOf(const std::string& name, Member member) {
    callRow<T>(name, [member](Images<T>& i) {
        member(i.a.data, i.a.step(), i.selected.data, i.selected.step(), region, &i.first);
    });
}

template <class T, class Member> void valueOfTwo(const std::string& name, Member member) {
    callRow<T>(name, [member](Images<T>& i) {
        member(i.a.data, i.a.step(), i.b.data, i.b.step(), i.selected.data, i.selected.step(), region,
               &i.first);
    });
}

template <class T, class Member> void extremes(const std::string& name, Member member) {
    callRow<T>(name, [member](Images<T>& i) {
        member(i.a.data, i.a.step(), region, &i.least, &i.most, &i.leastAt, &i.mostAt);
    });
}

template <class T, class Member> void extremesUnderMask(const std::string& name, Member member) {
    callRow<T>(name, [member](Images<T>& i) {
        member(i.a.data, i.a.step(), i.selected.data, i.selected.step(), region, &i.least, &i.most,
               &i.leastAt, &i.mostAt);
    });
}

void accumulators() {
    sumOf<Lum8u>("Add_8u32f", lumiAdd_8u32f_C1IR);
    sumOf<Lum16u>("Add_16u32f", lumiAdd_16u32f_C1IR);
    sumOf<Lum8u>("AddSquare_8u32f", lumiAddSquare_8u32f_C1IR);
    sumOf<Lum32f>("AddSquare_32f", lumiAddSquare_32f_C1IR);
    callRow<Lum8u>("Add_8u32f_mask", [](Images<Lum8u>& i) {
        lumiAdd_8u32f_C1IMR(i.a.data, i.a.step(), i.selected.data, i.selected.step(), i.sum.data,
                            i.sum.step(), region);
    });
    callRow<Lum8u>("AddProduct_8u32f", [](Images<Lum8u>& i) {
        lumiAddProduct_8u32f_C1IR(i.a.data, i.a.step(), i.b.data, i.b.step(), i.sum.data, i.sum.step(),
                                  region);
    });
    callRow<Lum8u>("AddWeighted_8u32f", [](Images<Lum8u>& i) {
        lumiAddWeighted_8u32f_C1IR(i.a.data, i.a.step(), i.sum.data, i.sum.step(), region, 0.5F);
    });
    callRow<Lum32f>("AddWeighted_32f", [](Images<Lum32f>& i) {
        lumiAddWeighted_32f_C1IR(i.a.data, i.a.step(), i.sum.data, i.sum.step(), region, 0.5F);
    });
}

const RowFile file(
    [] {
        differences<Lum8u>("8u", lumiAbsDiff_8u_C1R, lumiAbsDiffC_8u_C1R);
        differences<Lum16u>("16u", lumiAbsDiff_16u_C1R, lumiAbsDiffC_16u_C1R);
        differences<Lum32f>("32f", lumiAbsDiff_32f_C1R, lumiAbsDiffC_32f_C1R);
        accumulators();
        deviation<Lum8u>("Mean_StdDev_8u", lumiMean_StdDev_8u_C1R);
        deviation<Lum16u>("Mean_StdDev_16u", lumiMean_StdDev_16u_C1R);
        deviation<Lum32f>("Mean_StdDev_32f", lumiMean_StdDev_32f_C1R);
        valueOf<Lum8u>("Mean_8u_mask", lumiMean_8u_C1MR);
        valueOf<Lum32f>("Mean_32f_mask", lumiMean_32f_C1MR);
        valueOf<Lum8u>("Norm_Inf_8u_mask", lumiNorm_Inf_8u_C1MR);
        valueOf<Lum8u>("Norm_L1_8u_mask", lumiNorm_L1_8u_C1MR);
        valueOf<Lum8u>("Norm_L2_8u_mask", lumiNorm_L2_8u_C1MR);
        valueOf<Lum16u>("Norm_L2_16u_mask", lumiNorm_L2_16u_C1MR);
        valueOf<Lum32f>("Norm_L2_32f_mask", lumiNorm_L2_32f_C1MR);
        valueOfTwo<Lum8u>("NormDiff_L1_8u_mask", lumiNormDiff_L1_8u_C1MR);
        valueOfTwo<Lum8u>("NormDiff_L2_8u_mask", lumiNormDiff_L2_8u_C1MR);
        valueOfTwo<Lum32f>("NormDiff_L2_32f_mask", lumiNormDiff_L2_32f_C1MR);
        valueOfTwo<Lum8u>("NormRel_L2_8u_mask", lumiNormRel_L2_8u_C1MR);
        extremes<Lum8u>("MinMaxIndx_8u", lumiMinMaxIndx_8u_C1R);
        extremes<Lum16u>("MinMaxIndx_16u", lumiMinMaxIndx_16u_C1R);
        extremes<Lum32f>("MinMaxIndx_32f", lumiMinMaxIndx_32f_C1R);
        extremesUnderMask<Lum8u>("MinMaxIndx_8u_mask", lumiMinMaxIndx_8u_C1MR);
        extremesUnderMask<Lum32f>("MinMaxIndx_32f_mask", lumiMinMaxIndx_32f_C1MR);
    },
    Measure::calls);

} // namespace
} // namespace bench

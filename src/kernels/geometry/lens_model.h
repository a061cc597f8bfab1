// Where a pixel of the corrected picture lies in the picture that the lens has drawn. The formulas are here
// once, for one pixel (float) and for four neighbours of a row (Float4), with the same roundings in the same
// order.
#pragma once

#include <tmmintrin.h>
#include <type_traits>

namespace lum::kernels {

/// Float4 floats; arithmetic lane by lane.
struct Float4 {
    __m128 lanes;

    Float4(__m128 values) : lanes(values) {}
    Float4(float value) : lanes(_mm_set1_ps(value)) {}

    friend Float4 operator+(Float4 p, Float4 q) { return _mm_add_ps(p.lanes, q.lanes); }
    friend Float4 operator-(Float4 p, Float4 q) { return _mm_sub_ps(p.lanes, q.lanes); }
    friend Float4 operator*(Float4 p, Float4 q) { return _mm_mul_ps(p.lanes, q.lanes); }
    friend Float4 operator/(Float4 p, Float4 q) { return _mm_div_ps(p.lanes, q.lanes); }
};

/// The number of a column: of column x alone, or of the four from x on.
template <class Value> Value columnNumber(int x) {
    if constexpr (std::is_same_v<Value, float>)
        return static_cast<float>(x);
    else
        return _mm_cvtepi32_ps(_mm_add_epi32(_mm_set1_epi32(x), _mm_setr_epi32(0, 1, 2, 3)));
}

template <class Value> struct Place {
    Value x;
    Value y;
};

/// Radial distortion: the offset from the optical centre (cx, cy), in pixels, grows by the factor k1 r2 + k2
/// r2 r2, with r2 = a + b the squared distance in units of the focal lengths.
struct RadialModel {
    float cx;
    float cy;
    float k1;
    float k2;
    float inverseFx2;
    float inverseFy2;

    RadialModel(float fx, float fy, float centreX, float centreY, float first, float second)
        : cx(centreX),
          cy(centreY),
          k1(first),
          k2(second),
          inverseFx2(1.0F / (fx * fx)),
          inverseFy2(1.0F / (fy * fy)) {}

    /// What a column contributes, whatever the row.
    template <class Value> struct Column {
        Value x;
        Value dx;
        Value own;   ///< (k2 a + k1) a
        Value cross; ///< 2 k2 a, to be multiplied by b
    };
    /// What a row contributes, whatever the column.
    struct Row {
        float y;
        float dy;
        float own; ///< (k2 b + k1) b
        float b;
    };

    template <class Value> Column<Value> column(int x) const {
        const Value place = columnNumber<Value>(x);
        const Value dx = place - Value(cx);
        const Value a = dx * dx * Value(inverseFx2);
        return {place, dx, (Value(k2) * a + Value(k1)) * a, Value(2 * k2) * a};
    }
    Row row(int y) const {
        const float place = static_cast<float>(y);
        const float dy = place - cy;
        const float b = dy * dy * inverseFy2;
        return {place, dy, (k2 * b + k1) * b, b};
    }
    template <class Value> Place<Value> place(const Column<Value>& column, const Row& row) const {
        const Value t = column.own + Value(row.own) + column.cross * Value(row.b);
        return {column.x + column.dx * t, Value(row.y) + Value(row.dy) * t};
    }
};

/// Radial and tangential distortion (Brown, Close-range camera calibration, 1971), in normalised coordinates
/// x = dx / fx and y = dy / fy.
struct TangentialModel {
    float fx;
    float fy;
    float cx;
    float cy;
    float k1;
    float k2;
    float p1;
    float p2;

    template <class Value> struct Column {
        Value x;
        Value xx;
        Value twiceXx;
    };
    struct Row {
        float y;
        float yy;
        float twiceYy;
    };

    template <class Value> Column<Value> column(int x) const {
        const Value normalised = (columnNumber<Value>(x) - Value(cx)) / Value(fx);
        return {normalised, normalised * normalised, Value(2.0F) * normalised * normalised};
    }
    Row row(int y) const {
        const float normalised = (static_cast<float>(y) - cy) / fy;
        return {normalised, normalised * normalised, 2 * normalised * normalised};
    }
    template <class Value> Place<Value> place(const Column<Value>& column, const Row& row) const {
        const Value x = column.x;
        const Value y(row.y);
        const Value r2 = column.xx + Value(row.yy);
        const Value radial = Value(1.0F) + Value(k1) * r2 + Value(k2) * r2 * r2;
        const Value movedX = x * radial + Value(2 * p1) * x * y + Value(p2) * (r2 + column.twiceXx);
        const Value movedY = y * radial + Value(p1) * (r2 + Value(row.twiceYy)) + Value(2 * p2) * x * y;
        return {Value(fx) * movedX + Value(cx), Value(fy) * movedY + Value(cy)};
    }
};

/// The columns of a model, each computed where it is needed.
template <class Model> struct ComputedColumns {
    const Model& model;

    template <class Value> auto at(int x) const { return model.template column<Value>(x); }
};

/// The columns of a model, computed once for all rows; those that fill no vector are few, and are computed
/// again.
template <class Model> class PreparedColumns {
  public:
    using FourColumns = typename Model::template Column<Float4>;

    /// Memory for width / 4 groups of four columns, at a multiple of 16.
    PreparedColumns(const Model& model, int width, FourColumns* memory) : model_(model), groups_(memory) {
        for (int group = 0; group < width / 4; ++group)
            memory[group] = model.template column<Float4>(4 * group);
    }

    template <class Value> auto at(int x) const {
        if constexpr (std::is_same_v<Value, float>)
            return model_.template column<float>(x);
        else
            return groups_[x / 4];
    }

  private:
    const Model& model_;
    const FourColumns* groups_;
};

} // namespace lum::kernels

// Where a pixel of the corrected picture lies in the picture that the lens has drawn. The formulas are here
// once, for one pixel (float) and for neighbours of a row (blocks of floats), with the same roundings in the same
// order.
#pragma once

#include <type_traits>

#include "frame/lanes_aligned.h"
#include "frame/lanes_parts.h"

namespace lum::kernels {

/// One value in every element.
template <class Value> LUM_LANE Value all(float value) {
    if constexpr (std::is_same_v<Value, float>)
        return value;
    else
        return broadcast<Value::count>(value);
}

/// The number of a column: of column x alone, or of those from x on.
template <class Value> LUM_LANE Value columnNumber(int x) {
    alignas(64) static constexpr Lum32s order[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    if constexpr (std::is_same_v<Value, float>)
        return static_cast<float>(x);
    else
        return toFloat(broadcast<Value::count>(x) + load<Value::count>(order));
}

/// One term of the columns from a group on, where each group of four columns has `terms` terms of 16 bytes, aligned to
/// them.
template <int n> LUM_LANE Block<float, n> loadTerm(const float* first, int terms) {
    if constexpr (n == 4)
        return loadAligned<n>(first);
    else
        return loadUnits<n>(first, 4 * terms);
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
    /// Columns as PreparedColumns keeps them: four of each term in turn.
    static constexpr int terms = 4;
    template <int n> LUM_LANE static Column<Block<float, n>> loadColumns(const float* first) {
        return {loadTerm<n>(first, terms), loadTerm<n>(first + 4, terms), loadTerm<n>(first + 8, terms),
                loadTerm<n>(first + 12, terms)};
    }
    static void storeColumns(const Column<Float4>& columns, float* first) {
        store(columns.x, first);
        store(columns.dx, first + 4);
        store(columns.own, first + 8);
        store(columns.cross, first + 12);
    }
    /// What a row contributes, whatever the column.
    struct Row {
        float y;
        float dy;
        float own; ///< (k2 b + k1) b
        float b;
    };

    template <class Value> LUM_LANE Column<Value> column(int x) const {
        const Value place = columnNumber<Value>(x);
        const Value dx = place - all<Value>(cx);
        const Value a = dx * dx * all<Value>(inverseFx2);
        return {place, dx, (all<Value>(k2) * a + all<Value>(k1)) * a, all<Value>(2 * k2) * a};
    }
    Row row(int y) const {
        const float place = static_cast<float>(y);
        const float dy = place - cy;
        const float b = dy * dy * inverseFy2;
        return {place, dy, (k2 * b + k1) * b, b};
    }
    template <class Value> LUM_LANE Place<Value> place(const Column<Value>& column, const Row& row) const {
        const Value t = column.own + all<Value>(row.own) + column.cross * all<Value>(row.b);
        return {column.x + column.dx * t, all<Value>(row.y) + all<Value>(row.dy) * t};
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
    static constexpr int terms = 3;
    template <int n> LUM_LANE static Column<Block<float, n>> loadColumns(const float* first) {
        return {loadTerm<n>(first, terms), loadTerm<n>(first + 4, terms), loadTerm<n>(first + 8, terms)};
    }
    static void storeColumns(const Column<Float4>& columns, float* first) {
        store(columns.x, first);
        store(columns.xx, first + 4);
        store(columns.twiceXx, first + 8);
    }
    struct Row {
        float y;
        float yy;
        float twiceYy;
    };

    template <class Value> LUM_LANE Column<Value> column(int x) const {
        const Value normalised = (columnNumber<Value>(x) - all<Value>(cx)) / all<Value>(fx);
        return {normalised, normalised * normalised, all<Value>(2.0F) * normalised * normalised};
    }
    Row row(int y) const {
        const float normalised = (static_cast<float>(y) - cy) / fy;
        return {normalised, normalised * normalised, 2 * normalised * normalised};
    }
    template <class Value> LUM_LANE Place<Value> place(const Column<Value>& column, const Row& row) const {
        const Value x = column.x;
        const Value y = all<Value>(row.y);
        const Value r2 = column.xx + all<Value>(row.yy);
        const Value radial = all<Value>(1.0F) + all<Value>(k1) * r2 + all<Value>(k2) * r2 * r2;
        const Value movedX = x * radial + all<Value>(2 * p1) * x * y + all<Value>(p2) * (r2 + column.twiceXx);
        const Value movedY =
            y * radial + all<Value>(p1) * (r2 + all<Value>(row.twiceYy)) + all<Value>(2 * p2) * x * y;
        return {all<Value>(fx) * movedX + all<Value>(cx), all<Value>(fy) * movedY + all<Value>(cy)};
    }
};

/// The columns of a model, each computed where it is needed.
template <class Model> struct ComputedColumns {
    Model model;

    /// What a loop over pixels reads: a copy, which the compiler sees that no store into a result changes.
    ComputedColumns inLoop() const { return *this; }

    template <class Value> LUM_LANE auto at(int x) const { return model.template column<Value>(x); }
};

/// The columns of a model, computed once for all rows, in blocks of four; those that fill no block are few, and are
/// computed again.
template <class Model> class PreparedColumns {
  public:
    /// Memory for Model::terms floats of each column in a block.
    PreparedColumns(const Model& model, int width, float* memory) : model_(model), memory_(memory) {
        for (int x = 0; x <= width - 4; x += 4)
            Model::storeColumns(model.template column<Float4>(x), memory + x * Model::terms);
    }

    const PreparedColumns& inLoop() const { return *this; }

    template <class Value> LUM_LANE auto at(int x) const {
        if constexpr (std::is_same_v<Value, float>)
            return model_.template column<float>(x);
        else
            return Model::template loadColumns<Value::count>(memory_ + x * Model::terms);
    }

  private:
    const Model& model_;
    const float* memory_;
};

} // namespace lum::kernels

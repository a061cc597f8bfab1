// A stage of a Haar cascade as the kernels walk it: its classifiers and rectangles, and the three ways in which an
// apply call reads them. Each way has a cursor that points at a classifier and, within it, on a rectangle.
#pragma once

#include <cstddef>

#include "frame/image.h"

namespace lum::kernels {

/// A weight, threshold or output value: a float or an integer, as the stage was built.
union HaarValue {
    Lum32f real;
    Lum32s integer;

    template <class T> T as() const;
};
template <> inline Lum32f HaarValue::as<Lum32f>() const { return real; }
template <> inline Lum32s HaarValue::as<Lum32s>() const { return integer; }

/// A weighted rectangle: corners A and D are added, B and C subtracted.
struct HaarFeature {
    Lum32s ax, ay;
    Lum32s bx, by;
    Lum32s cx, cy;
    Lum32s dx, dy;
    HaarValue weight;
};

struct HaarClassifierRecord {
    Lum32s count;
    HaarFeature* features;
    HaarValue threshold;
    HaarValue below;
    HaarValue above;
    /// The classifier's index in the caller's order, times 256; bit 0 is set if it is tilted.
    Lum32s origin;

    bool tilted() const { return (origin & 1) != 0; }
};

static_assert(sizeof(HaarFeature) == 36);
static_assert(sizeof(void*) != 4 ||
              (sizeof(HaarClassifierRecord) == 24 && offsetof(HaarClassifierRecord, features) == 4 &&
               offsetof(HaarClassifierRecord, threshold) == 8 &&
               offsetof(HaarClassifierRecord, origin) == 20));

/// Elements from a pixel's place to a corner.
constexpr std::ptrdiff_t haarOffset(Lum32s x, Lum32s y, std::ptrdiff_t elementsOfStep) {
    return static_cast<std::ptrdiff_t>(
        static_cast<std::size_t>(y) * static_cast<std::size_t>(elementsOfStep) + static_cast<std::size_t>(x));
}

/// A rectangle's corners as elements from a pixel's place.
struct HaarOffsets {
    std::ptrdiff_t a, b, c, d;

    static HaarOffsets of(const HaarFeature& feature, std::ptrdiff_t elementsOfStep) {
        return {haarOffset(feature.ax, feature.ay, elementsOfStep),
                haarOffset(feature.bx, feature.by, elementsOfStep),
                haarOffset(feature.cx, feature.cy, elementsOfStep),
                haarOffset(feature.dx, feature.dy, elementsOfStep)};
    }
};

/// A rectangle's corners in an integral image, for the first of a group of pixels.
template <class Element> struct HaarCorners {
    const Element *a, *b, *c, *d;

    HaarCorners(const Element* place, const HaarOffsets& offsets)
        : a(place + offsets.a), b(place + offsets.b), c(place + offsets.c), d(place + offsets.d) {}
};

/// What all ways of reading the records have in common.
template <class Value> class HaarRecordCursor {
  public:
    /// A stage of no classifiers may have no records.
    HaarRecordCursor(const HaarClassifierRecord* records, int classifiers)
        : record_(records),
          end_(records + classifiers),
          feature_(classifiers > 0 ? records->features : nullptr) {}

    bool atEnd() const { return record_ == end_; }
    int rectangles() const { return record_->count; }
    Value threshold() const { return record_->threshold.template as<Value>(); }
    Value below() const { return record_->below.template as<Value>(); }
    Value above() const { return record_->above.template as<Value>(); }
    /// Features lie in the order of the records, so the last rectangle's successor is the next classifier's first.
    void nextClassifier() { ++record_; }
    Value weight() const { return feature_->weight.template as<Value>(); }
    void nextRectangle() { ++feature_; }

  protected:
    const HaarClassifierRecord& record() const { return *record_; }
    const HaarFeature& feature() const { return *feature_; }

  private:
    const HaarClassifierRecord* record_;
    const HaarClassifierRecord* end_;
    const HaarFeature* feature_;
};

/// A stage in arrays of its own: one entry a rectangle, and one a classifier.
struct HaarTables {
    int classifiers;
    HaarOffsets* offsets;
    Lum32f* weights;
    Lum32s* counts;
    Lum32f* thresholds;
    Lum32f* below;
    Lum32f* above;
};

/// Classifiers and offsets from tables.
struct HaarTableStage {
    using Element = Lum32f;

    Image<const Lum32f> src;
    HaarTables tables;

    class Cursor {
      public:
        Cursor(const HaarTableStage& stage, int x, int y)
            : tables_(stage.tables),
              place_(stage.src.row(y) + x),
              offsets_(tables_.offsets),
              weight_(tables_.weights) {}

        bool atEnd() const { return classifier_ == tables_.classifiers; }
        int rectangles() const { return tables_.counts[classifier_]; }
        Lum32f threshold() const { return tables_.thresholds[classifier_]; }
        Lum32f below() const { return tables_.below[classifier_]; }
        Lum32f above() const { return tables_.above[classifier_]; }
        void nextClassifier() { ++classifier_; }
        HaarCorners<Lum32f> corners() const { return {place_, *offsets_}; }
        Lum32f weight() const { return *weight_; }
        void nextRectangle() {
            ++offsets_;
            ++weight_;
        }

      private:
        const HaarTables& tables_;
        const Lum32f* place_;
        const HaarOffsets* offsets_;
        const Lum32f* weight_;
        int classifier_ = 0;
    };
};

/// Classifiers from the records, offsets from a table.
template <class Value> struct HaarRecordStage {
    using Element = Lum32s;

    Image<const Lum32s> src;
    int classifiers;
    const HaarClassifierRecord* records;
    const HaarOffsets* offsets;

    class Cursor : public HaarRecordCursor<Value> {
      public:
        Cursor(const HaarRecordStage& stage, int x, int y)
            : HaarRecordCursor<Value>(stage.records, stage.classifiers),
              place_(stage.src.row(y) + x),
              offsets_(stage.offsets) {}

        HaarCorners<Lum32s> corners() const { return {place_, *offsets_}; }
        void nextRectangle() {
            HaarRecordCursor<Value>::nextRectangle();
            ++offsets_;
        }

      private:
        const Lum32s* place_;
        const HaarOffsets* offsets_;
    };
};

/// Classifiers from the records, upright ones on src, tilted ones on tilt; offsets are computed on each read.
template <class IntegralElement, class Value> struct HaarMixedStage {
    using Element = IntegralElement;

    Image<const Element> src;
    Image<const Element> tilt;
    int classifiers;
    const HaarClassifierRecord* records;

    class Cursor : public HaarRecordCursor<Value> {
      public:
        Cursor(const HaarMixedStage& stage, int x, int y)
            : HaarRecordCursor<Value>(stage.records, stage.classifiers),
              upright_{stage.src.row(y) + x, stage.src.step / static_cast<int>(sizeof(Element))},
              tilted_{stage.tilt.row(y + 1) + x + 1, stage.tilt.step / static_cast<int>(sizeof(Element))} {}

        HaarCorners<Element> corners() const {
            const Base& base = this->record().tilted() ? tilted_ : upright_;
            return {base.place, HaarOffsets::of(this->feature(), base.elementsOfStep)};
        }

      private:
        struct Base {
            const Element* place;
            std::ptrdiff_t elementsOfStep;
        };
        Base upright_;
        Base tilted_;
    };
};

} // namespace lum::kernels

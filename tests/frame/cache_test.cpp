#include "frame/cache.h"
#include "support/cache_report.h"

using namespace lum;
using support::CacheReport;

TEST(Cache, FigureBelowTheCacheStoresOrdinarily) {
    CacheReport report(1000);
    EXPECT_EQ(Stores::ordinary, storesForFigure(999));
    EXPECT_EQ(Stores::bypassing, storesForFigure(1000));
    EXPECT_EQ(Stores::bypassing, storesForFigure(1001));
}

TEST(Cache, FigureWrapsAndANegativeOneStoresOrdinarily) {
    EXPECT_EQ(12, wrappedFigure(6, {2, 1}));
    EXPECT_EQ(static_cast<Lum32s>(0x80000000U), wrappedFigure(8, {0x4000, 0x4000}));
    EXPECT_EQ(0, wrappedFigure(16, {0x4000, 0x4000}));
    CacheReport report(support::tinyCache);
    EXPECT_EQ(Stores::ordinary, storesForFigure(wrappedFigure(8, {0x4000, 0x4000})));
    EXPECT_EQ(Stores::ordinary, storesForFigure(wrappedFigure(16, {0x4000, 0x4000})));
}

TEST(Cache, FailingQueryIsACacheOfNoSizeOrARequestForOrdinaryStores) {
    CacheReport report(support::hugeCache, lumStatusOutOfRange);
    EXPECT_EQ(Stores::bypassing, storesForFigure(0));
    EXPECT_EQ(Stores::bypassing, storesForFigure(5));
    EXPECT_EQ(Stores::ordinary, storesForFigure(-1));
    EXPECT_EQ(Stores::ordinary, storesForFigure(support::hugeCache, OnUnknownCache::storeOrdinarily));
}

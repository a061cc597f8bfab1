#include "frame/stores.h"
#include "support/cache_report.h"

using namespace lum;
using support::CacheReport;

TEST(Cache, SizeBelowTheCacheStoresOrdinarily) {
    CacheReport report(1000);
    EXPECT_EQ(Stores::ordinary, storesForBytes(999));
    EXPECT_EQ(Stores::streaming, storesForBytes(1000));
    EXPECT_EQ(Stores::streaming, storesForBytes(1001));
}

TEST(Cache, SizeWrapsAndANegativeOneStoresOrdinarily) {
    EXPECT_EQ(12, wrappedBytes(6, {2, 1}));
    EXPECT_EQ(static_cast<Lum32s>(0x80000000U), wrappedBytes(8, {0x4000, 0x4000}));
    EXPECT_EQ(0, wrappedBytes(16, {0x4000, 0x4000}));
    CacheReport report(support::tinyCache);
    EXPECT_EQ(Stores::ordinary, storesForBytes(wrappedBytes(8, {0x4000, 0x4000})));
    EXPECT_EQ(Stores::ordinary, storesForBytes(wrappedBytes(16, {0x4000, 0x4000})));
}

TEST(Cache, FailingQueryIsNoCacheUnlessAskedOtherwise) {
    CacheReport report(support::hugeCache, lumStatusOutOfRange);
    EXPECT_EQ(Stores::streaming, storesForBytes(0));
    EXPECT_EQ(Stores::streaming, storesForBytes(5));
    EXPECT_EQ(Stores::ordinary, storesForBytes(-1));
    EXPECT_EQ(Stores::ordinary, storesForBytes(support::hugeCache, OnUnknownCache::storeOrdinarily));
}

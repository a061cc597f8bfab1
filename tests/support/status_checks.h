// Refused calls: the status, and that nothing was written.
#pragma once

#include <gtest/gtest.h>

#include "support/guarded_image.h"

/// The call returns the status.
#define EXPECT_STATUS(expected, call) EXPECT_EQ(static_cast<LumStatus>(expected), (call))

/// The call returns the status and leaves the image as it was.
#define EXPECT_REFUSED(expected, image, call)                                                                \
    do {                                                                                                     \
        EXPECT_EQ(static_cast<LumStatus>(expected), (call));                                                 \
        EXPECT_TRUE((image).untouched()) << "written by " #call;                                             \
    } while (false)

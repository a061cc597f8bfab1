# The libraries that the program takes where this build can link them: libpng and libjpeg-turbo for pictures, pugixml for
# cascades in XML. Not every machine can have their 32-bit packages. Linking is what is tried, as a library of the other
# architecture is found in the same places. A library that was missing is looked for again each time, so that one that is
# installed later is used.
include(CheckCXXSourceCompiles)

function(lumcv_try_library variable libraries source)
  if(NOT ${variable})
    unset(${variable} CACHE)
  endif()
  set(CMAKE_REQUIRED_LIBRARIES ${libraries})
  set(CMAKE_REQUIRED_QUIET ON)
  check_cxx_source_compiles("${source}" ${variable})
endfunction()

lumcv_try_library(LUMCV_HAS_PNG_AND_JPEG "png;jpeg" [[
#include <cstdio>
#include <jpeglib.h>
#include <png.h>
int main() {
    jpeg_error_mgr errors;
    return jpeg_std_error(&errors) == nullptr || png_access_version_number() == 0;
}
]])
lumcv_try_library(LUMCV_HAS_PUGIXML "pugixml" [[
#include <pugixml.hpp>
int main() { return pugi::xml_document().load_string("<a/>") ? 0 : 1; }
]])
if(NOT LUMCV_HAS_PNG_AND_JPEG)
  message(STATUS "The program reads and writes PNM and PAM only: this build cannot link libpng and libjpeg-turbo")
endif()
if(NOT LUMCV_HAS_PUGIXML)
  message(STATUS "The program reads no cascades in XML: this build cannot link pugixml")
endif()

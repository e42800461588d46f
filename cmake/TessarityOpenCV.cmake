# Debian's libopencv-core-dev and libopencv-imgproc-dev ship headers and libraries
# but no CMake package (that lives in the libopencv-dev meta-package, which drags in
# the GUI and video stack). Find the two modules by hand and expose them under the
# target names OpenCV's own package uses.
if(NOT TARGET opencv_core)
  find_path(TESSARITY_OPENCV_INCLUDE_DIR opencv2/core.hpp PATH_SUFFIXES opencv4 REQUIRED)
  find_library(TESSARITY_OPENCV_CORE_LIBRARY opencv_core REQUIRED)
  add_library(opencv_core UNKNOWN IMPORTED)
  set_target_properties(opencv_core PROPERTIES
    IMPORTED_LOCATION "${TESSARITY_OPENCV_CORE_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${TESSARITY_OPENCV_INCLUDE_DIR}")
endif()
if(NOT TARGET opencv_imgproc)
  find_library(TESSARITY_OPENCV_IMGPROC_LIBRARY opencv_imgproc REQUIRED)
  add_library(opencv_imgproc UNKNOWN IMPORTED)
  set_target_properties(opencv_imgproc PROPERTIES
    IMPORTED_LOCATION "${TESSARITY_OPENCV_IMGPROC_LIBRARY}"
    INTERFACE_LINK_LIBRARIES opencv_core)
endif()

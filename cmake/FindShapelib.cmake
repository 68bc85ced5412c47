# Finds shapelib (Debian's libshp-dev), whose DBF API the dBase provider
# uses; it ships neither a CMake package nor a pkg-config file.
# Defines Shapelib::shp.
find_path(Shapelib_INCLUDE_DIR shapefil.h)
find_library(Shapelib_LIBRARY NAMES shp)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Shapelib REQUIRED_VARS Shapelib_LIBRARY Shapelib_INCLUDE_DIR)
if(Shapelib_FOUND AND NOT TARGET Shapelib::shp)
  add_library(Shapelib::shp UNKNOWN IMPORTED)
  set_target_properties(Shapelib::shp PROPERTIES
    IMPORTED_LOCATION "${Shapelib_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${Shapelib_INCLUDE_DIR}")
endif()
mark_as_advanced(Shapelib_INCLUDE_DIR Shapelib_LIBRARY)

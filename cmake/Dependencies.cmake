find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

# libuuid by hand: its -dev package drags a second C library in when it is installed for another architecture, and its
# header is the same for all.
find_path(UUID_INCLUDE_DIR NAMES uuid/uuid.h REQUIRED)
find_library(UUID_LIBRARY NAMES uuid libuuid.so.1 REQUIRED)
add_library(contraflow_uuid INTERFACE)
target_include_directories(contraflow_uuid SYSTEM INTERFACE ${UUID_INCLUDE_DIR})
target_link_libraries(contraflow_uuid INTERFACE ${UUID_LIBRARY})

find_package(nlohmann_json REQUIRED)
pkg_check_modules(PUGIXML REQUIRED IMPORTED_TARGET pugixml)

# libsvm comes without a pkg-config file.
find_path(SVM_INCLUDE_DIR NAMES libsvm/svm.h REQUIRED)
find_library(SVM_LIBRARY NAMES svm REQUIRED)
add_library(contraflow_svm INTERFACE)
target_include_directories(contraflow_svm SYSTEM INTERFACE ${SVM_INCLUDE_DIR})
target_link_libraries(contraflow_svm INTERFACE ${SVM_LIBRARY})

if(CONTRAFLOW_FFMPEG)
  pkg_check_modules(FFMPEG IMPORTED_TARGET libavformat libavcodec libavutil libswscale libavdevice)
endif()
if(CONTRAFLOW_TOOLS)
  pkg_check_modules(PNG REQUIRED IMPORTED_TARGET libpng)
  find_package(CLI11 REQUIRED)
endif()

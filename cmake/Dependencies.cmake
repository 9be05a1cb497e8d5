find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

pkg_check_modules(UUID REQUIRED IMPORTED_TARGET uuid)
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
if(CONTRAFLOW_TOOLS OR CONTRAFLOW_TESTS)
  pkg_check_modules(PNG REQUIRED IMPORTED_TARGET libpng)
  find_package(CLI11 REQUIRED)
endif()

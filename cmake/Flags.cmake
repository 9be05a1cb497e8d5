# What every translation unit of this tree is compiled with.
add_compile_options(
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align -Wunused
  # Fused multiply-adds would give an ARM other floats than a PC: the same frames must give the same alarms.
  -ffp-contract=off)
if(CONTRAFLOW_WERROR)
  add_compile_options(-Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # gcc's notes on ABI changes between its own versions concern nobody here.
  # So are gcc 12's false alarms about overlapping copies in its own strings (its bug 105329).
  add_compile_options(-Wno-psabi -Wno-restrict)
endif()

# The pixel loops are written to be vectorised by the compiler, which gcc 12 does at -O3 only.
set(CONTRAFLOW_KERNEL_OPTIONS $<$<CONFIG:Release>:-O3>)

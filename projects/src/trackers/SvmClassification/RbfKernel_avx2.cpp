// Compiled with -mavx2 on x86-64; see projects/CMakeLists.txt.
#include "trackers/SvmClassification/RbfKernel.h"

#ifdef __AVX2__

#include "trackers/SvmClassification/RbfKernel_lanes.h"

RbfKernel::Run const RbfKernel::avx2 = run;

#else

RbfKernel::Run const RbfKernel::avx2 = nullptr;

#endif

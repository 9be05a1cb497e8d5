#include <gtest/gtest.h>

#ifdef __SANITIZE_ADDRESS__
/// Frames on the heap: more is found, and the stack that a cancelled thread unwinds carries no poison of the frames that are
/// gone already, which this sanitizer would take for an error.
extern "C" char const* __asan_default_options()
{
    return "detect_stack_use_after_return=1";
}
#endif

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

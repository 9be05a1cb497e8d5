#include <gtest/gtest.h>

#include "misc/rktl_SmartArray.h"
#include "misc/rktl_SmartPtr.h"
#include "support/bytes.h"

#include <string>
#include <thread>
#include <vector>

namespace {

struct Base {
    virtual ~Base() { *trace += "~Base "; }
    std::string* trace;
};

struct Derived : Base {
    explicit Derived(std::string& where) { trace = &where; }
    ~Derived() override { *trace += "~Derived "; }
    void release() { *trace += "release "; }
};

/// Uses both hooks, as a class does whose objects are not to be deleted.
class Releasing : public rktl::SmartPtr<Derived> {
public:
    using SmartPtr::SmartPtr;
    Releasing(Releasing const&) = default;
    Releasing& operator=(Releasing const&) = default;
    ~Releasing() override { removeReference(); }
    void uninitializeData() override { *get()->trace += "uninitialise "; }
    void removeReference() override
    {
        dropReference([](Derived* object) { object->release(); });
    }
};

} // namespace

TEST(SmartPtr, LastReferenceDeletesTheWholeObjectOnce)
{
    std::string trace;
    {
        rktl::ConstSmartPtr<Base> constant;
        {
            rktl::SmartPtr<Derived> const first(new Derived(trace));
            rktl::SmartPtr<Base> const base(first);
            rktl::SmartPtr<Derived> second;
            second = first;
            second = *&second;
            constant = base;
            EXPECT_TRUE(second && second == first && constant == base);
        }
        EXPECT_EQ("", trace);
        rktl::ConstSmartPtr<Base> const null;
        EXPECT_FALSE(rktl::ConstSmartPtr<Base>(null));
        constant = null;
        EXPECT_EQ("~Derived ~Base ", trace);
        EXPECT_FALSE(constant);
    }
    EXPECT_EQ("~Derived ~Base ", trace);
}

TEST(SmartPtr, HooksRunBeforeTheObjectGoesAndAlsoOnAssignment)
{
    std::string trace;
    Derived object(trace);
    Releasing pointer(&object);
    {
        Releasing const copy(pointer);
        pointer = Releasing();
        EXPECT_EQ("", trace);
    }
    EXPECT_EQ("uninitialise release ", trace);
    trace.clear();
    pointer = Releasing(&object);
    pointer = Releasing();
    EXPECT_EQ("uninitialise release ", trace);
}

TEST(SmartPtr, CountHoldsWhenManyThreadsCopy)
{
    std::string trace;
    {
        rktl::SmartPtr<Derived> const shared(new Derived(trace));
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([copy = shared] {
                for (int i = 0; i < 20000; ++i)
                    rktl::SmartPtr<Derived> const another(copy);
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ("", trace);
    }
    EXPECT_EQ("~Derived ~Base ", trace);
}

TEST(SmartArray, ElementsAreSharedAndBoundsAreKept)
{
    rktl::SmartArray<unsigned char> array(new unsigned char[3]{1, 2, 3}, 3);
    rktl::ConstSmartArray<unsigned char> const constant(array);
    array[2] = 9;
    *array = 7;
    EXPECT_EQ(7, *constant);
    EXPECT_EQ(9, constant[2]);

    std::string const prefix = "rktl::SmartArray::";
    EXPECT_EQ(prefix + "operator[]() - index out of range!", support::messageOf([&] { array[3] = 0; }));

    array = rktl::SmartArray<unsigned char>();
    EXPECT_EQ(prefix + "operator[]() - pointer is NULL!", support::messageOf([&] { array[0] = 0; }));
    EXPECT_EQ(9, constant[2]) << "the elements live on in the other array";
}

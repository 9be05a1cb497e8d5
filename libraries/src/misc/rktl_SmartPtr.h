#pragma once

#include "misc/rktl_Exception.h"
#include "misc/rktl_SharedCount.h"

#include <compare>
#include <concepts>

namespace rktl {

/// Reference-counted pointer that gives out constant access only. The object dies with its last pointer.
///
/// Copying a pointer is safe on any thread while the source stays alive; the object itself is not protected.
/// One pointer must not be assigned on one thread and read on another.
///
/// A derived class that overrides uninitializeData or removeReference calls removeReference in its own destructor: the
/// destructor of this class no longer reaches the overrides. Such a class must not be copied into its base.
template <class T> class ConstSmartPtr {
public:
    ConstSmartPtr() = default;

    /// Takes the object over, which came from new; null counts nothing.
    explicit ConstSmartPtr(T* object)
        : mObject(object)
    {
        if (mObject)
            mCount.start();
    }

    /// Throws rktl::Exception when the source's object was deleted meanwhile; so does the assignment.
    ConstSmartPtr(ConstSmartPtr const& source) { share(source.mObject, source.mCount, copyFailure); }

    /// A pointer to a derived class serves as one to its base.
    template <class U>
    requires std::convertible_to<U*, T*> ConstSmartPtr(ConstSmartPtr<U> const& source)
    {
        share(source.mObject, source.mCount, copyFailure);
    }

    ConstSmartPtr& operator=(ConstSmartPtr const& source)
    {
        if (this != &source)
            share(source.mObject, source.mCount, "operator=() - rhs deleted as it was being copied");
        return *this;
    }

    virtual ~ConstSmartPtr() { ConstSmartPtr::removeReference(); }

    /// Throw rktl::Exception for null.
    T const* operator->() const { return checked("operator->() - pointer is NULL!"); }
    T const& operator*() const { return *checked("operator*() - pointer is NULL!"); }

    /// Null for null. The object stays ours.
    T const* get() const { return mObject; }

    explicit operator bool() const { return mObject != nullptr; }

    /// By the address of the object.
    bool operator==(ConstSmartPtr const& other) const { return mObject == other.mObject; }
    std::strong_ordering operator<=>(ConstSmartPtr const& other) const
    {
        return std::compare_three_way()(mObject, other.mObject);
    }

    /// Runs once, before the last reference goes, while the object still exists.
    virtual void uninitializeData() { }

    /// Becomes null, and deletes the object when this was its last reference.
    virtual void removeReference()
    {
        dropReference([](T* object) { delete object; });
    }

protected:
    template <class U> friend class ConstSmartPtr;

    static constexpr char const* copyFailure = "copy constructor - rhs deleted as it was being copied";

    /// Another view of the owner's object, counted together with it; null becomes null.
    template <class U> ConstSmartPtr(ConstSmartPtr<U> const& owner, T* view)
    {
        if (view)
            share(view, owner.mCount, copyFailure);
    }

    /// What removeReference does, with destroy(object) in place of delete.
    template <class Destroy> void dropReference(Destroy destroy)
    {
        if (!mObject)
            return;
        bool const last = mCount.removeReference();
        if (last) {
            uninitializeData();
            mCount.free();
        }
        T* const object = mObject;
        mObject = nullptr;
        mCount = SharedCount();
        if (last)
            destroy(object);
    }

    T* checked(char const* failure) const
    {
        if (!mObject)
            throw Exception(path, "rktl::SmartPtr<>", failure);
        return mObject;
    }

    T* object() const { return mObject; }

private:
    static constexpr char const* path = "libraries/src/misc/rktl_SmartPtr";

    /// Takes the arguments by value and counts before it drops what it held: the source may be part of that.
    void share(T* object, SharedCount count, char const* failure)
    {
        bool const alive = !object || count.addReference();
        removeReference();
        if (!alive)
            throw Exception(path, "rktl::SmartPtr<>", failure);
        mObject = object;
        mCount = object ? count : SharedCount();
    }

    T* mObject = nullptr;
    SharedCount mCount;
};

/// Reference-counted pointer with changeable access. A ConstSmartPtr can be made of it, and both share the count.
template <class T> class SmartPtr : public ConstSmartPtr<T> {
public:
    SmartPtr() = default;

    explicit SmartPtr(T* object)
        : ConstSmartPtr<T>(object)
    {
    }

    template <class U>
    requires std::convertible_to<U*, T*> SmartPtr(SmartPtr<U> const& source)
        : ConstSmartPtr<T>(source)
    {
    }

    T* operator->() const { return this->checked("operator->() - pointer is NULL!"); }
    T& operator*() const { return *this->checked("operator*() - pointer is NULL!"); }
    T* get() const { return this->object(); }

protected:
    template <class U>
    SmartPtr(SmartPtr<U> const& owner, T* view)
        : ConstSmartPtr<T>(owner, view)
    {
    }
};

} // namespace rktl

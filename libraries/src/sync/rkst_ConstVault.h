#pragma once

#include "misc/rktl_Exception.h"
#include "sync/rkst_Event.h"
#include "sync/rkst_Mutex.h"
#include "sync/rkst_MutexLock.h"

#include <atomic>
#include <cstdint>
#include <exception>
#include <typeinfo>

namespace rkst {

template <class T> class ConstVaultSafePointer;

/// What a vault throws that goes away while it is in use: "~name<type> - Not all locks released (count) before ...".
rktl::Exception vaultInUse(char const* name, std::type_info const& type, int count);

/// A value shared among threads that is read through guards only. Many readers at once; see rkst::Vault for writers.
///
/// mMutex decides who may enter, mReaders counts who is inside without it: a reader enters by holding the mutex for a
/// moment, so that a writer, who keeps it, keeps new readers out. Limits are in milliseconds: 0 tries, 0xFFFFFFFF waits
/// without limit. Any thread.
template <class T> class ConstVault {
public:
    explicit ConstVault(T const& initial)
        : mData(initial)
    {
    }

    ConstVault(ConstVault const&) = delete;
    ConstVault& operator=(ConstVault const&) = delete;

    /// Throws rktl::Exception when a guard still lives; that guard must not be touched any more, its destructor included.
    virtual ~ConstVault() noexcept(false)
    {
        bool const unused = bool(MutexLock(mMutex, 0)) && mReaders == 0;
        if (!unused && std::uncaught_exceptions() == 0) // the vault that was derived from this may have said it already
            throw vaultInUse("ConstVault", typeid(T), mReaders);
    }

    /// True when the mutex is busy or any guard lives. It may be out of date when the caller looks at it.
    virtual bool isLocked() const
    {
        MutexLock const lock(mMutex, 0);
        return !lock || mReaders > 0;
    }

    /// Null when the limit passed first.
    virtual ConstVaultSafePointer<T> getReadPtr(unsigned int milliseconds) const
    {
        MutexLock const lock(mMutex, milliseconds);
        return ConstVaultSafePointer<T>(lock ? this : nullptr);
    }

    /// True when value received a copy. Does not wait for readers.
    virtual bool copy(T& value, unsigned int milliseconds) const
    {
        MutexLock const lock(mMutex, milliseconds);
        if (lock)
            value = mData;
        return bool(lock);
    }

protected:
    friend class ConstVaultSafePointer<T>;

    T mData;
    mutable Event mReleased{false, false}; // signalled each time that a read guard goes
    Mutex mMutex{false};
    mutable std::atomic<int32_t> mReaders = 0; // read guards alive, copies included
};

/// The guard of a reader. The access lasts until the last copy is gone; a null one gives none. A guard belongs to one thread
/// at a time, and goes before its vault does.
template <class T> class ConstVaultSafePointer {
public:
    ConstVaultSafePointer() = default;
    ConstVaultSafePointer(ConstVaultSafePointer const& other) { init(other.mVault); }

    ConstVaultSafePointer& operator=(ConstVaultSafePointer const& other)
    {
        if (this != &other) {
            setNULL();
            init(other.mVault);
        }
        return *this;
    }

    virtual ~ConstVaultSafePointer() { ConstVaultSafePointer::setNULL(); }

    explicit operator bool() const { return mVault != nullptr; }

    /// Throw rktl::Exception for null.
    T const* operator->() const { return &**this; }
    T const& operator*() const
    {
        if (!mVault)
            throw rktl::Exception(
                "libraries/src/sync/rkst_ConstVault", "ConstVaultSafePtr", "operator*() - Trying to dereference a NULL.");
        return mVault->mData;
    }

    /// Gives the access up.
    virtual void setNULL()
    {
        if (!mVault)
            return;
        Event const released = mVault->mReleased; // once it counts no reader, a vault may go away
        --mVault->mReaders;
        released.signal();
        mVault = nullptr;
    }

protected:
    friend class ConstVault<T>;

    explicit ConstVaultSafePointer(ConstVault<T> const* vault) { init(vault); }

    /// Counts one more reader of a vault that this thread may read. Null stays null.
    virtual void init(ConstVault<T> const* vault)
    {
        mVault = vault;
        if (mVault)
            ++mVault->mReaders;
    }

    ConstVault<T> const* mVault = nullptr;
};

} // namespace rkst

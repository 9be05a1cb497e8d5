#pragma once

#include "sync/rkst_ConstVault.h"
#include "sync/rkst_Deadline.h"

#include <atomic>
#include <cstdint>
#include <utility>

namespace rkst {

template <class T> class VaultSafePointer;

/// A value shared among threads: many readers at once, or one writer. Each access has a limit in milliseconds (0 tries,
/// 0xFFFFFFFF waits without limit) and may fail, which is an ordinary answer.
///
/// A writer takes the mutex, waits until no reader is left, and keeps the mutex as long as any of its guards lives. A writer
/// that waits holds new readers back already, so it cannot starve. The mutex is recursive: the thread that holds a
/// write guard gets further ones, reads and copies at once. A thread that holds a read guard and asks for a write guard
/// waits for itself and gets null; it drops the read guard first.
template <class T> class Vault : public ConstVault<T> {
public:
    explicit Vault(T const& initial = T())
        : ConstVault<T>(initial)
    {
    }

    /// Throws rktl::Exception when a guard still lives; that guard must not be touched any more, its destructor included.
    ~Vault() noexcept(false) override
    {
        MutexLock lock(this->mMutex, 0);
        bool const unused = lock && mWriters == 0;
        for (; lock && mLockCount > 0; --mLockCount)
            this->mMutex.unlock(); // a mutex must not be destroyed while it is locked
        lock.unlock();
        if (!unused && std::uncaught_exceptions() == 0)
            throw vaultInUse("Vault", typeid(T), mWriters);
    }

    bool isLocked() const override
    {
        MutexLock const lock(this->mMutex, 0);
        return !lock || this->mReaders > 0 || mWriters > 0;
    }

    /// Null when the limit passed first.
    virtual VaultSafePointer<T> getWritePtr(unsigned int milliseconds)
    {
        MutexLock lock = lockForWriting(milliseconds);
        if (!lock)
            return VaultSafePointer<T>();
        lock.keepLocked();
        ++mLockCount;
        return VaultSafePointer<T>(this);
    }

    /// True when value was stored.
    virtual bool assign(T const& value, unsigned int milliseconds)
    {
        MutexLock const lock = lockForWriting(milliseconds);
        if (lock)
            this->mData = value;
        return bool(lock);
    }

    /// True when newValue was stored, and oldValue received what was there before.
    virtual bool exchange(T const& newValue, T& oldValue, unsigned int milliseconds)
    {
        T next(newValue);
        MutexLock const lock = lockForWriting(milliseconds);
        if (!lock)
            return false;
        using std::swap;
        swap(this->mData, next);
        swap(oldValue, next);
        return true;
    }

    /// True when value and what was there before changed places.
    virtual bool exchange(T& value, unsigned int milliseconds)
    {
        T old(value);
        if (!exchange(value, old, milliseconds))
            return false;
        value = old;
        return true;
    }

private:
    friend class VaultSafePointer<T>;

    /// Holds the mutex, with no reader left, or nothing when the limit passed first.
    MutexLock lockForWriting(unsigned int milliseconds)
    {
        if (MutexLock lock(this->mMutex, 0); lock && this->mReaders == 0)
            return lock; // as nearly always: asks no clock
        Deadline const deadline(milliseconds);
        MutexLock lock(this->mMutex, deadline.remaining());
        if (!lock)
            return lock;
        while (this->mReaders > 0 && this->mReleased.waitExclusive(deadline.remaining())) { }
        if (this->mReaders > 0)
            lock.unlock();
        return lock;
    }

    int32_t mLockCount = 0;            // how often the writer's thread locked the mutex; under the mutex
    std::atomic<int32_t> mWriters = 0; // write guards alive, copies included
};

/// The guard of a writer. The vault stays locked until the last copy is gone, so a guard can be handed down by value; all
/// copies stay on the thread that asked for the first one, and go before the vault does.
template <class T> class VaultSafePointer : public ConstVaultSafePointer<T> {
public:
    VaultSafePointer() = default;
    VaultSafePointer(VaultSafePointer const& other)
        : ConstVaultSafePointer<T>()
    {
        init(other.vault());
    }

    VaultSafePointer& operator=(VaultSafePointer const& other)
    {
        if (this != &other) {
            setNULL();
            init(other.vault());
        }
        return *this;
    }

    ~VaultSafePointer() override { VaultSafePointer::setNULL(); }

    /// Throw rktl::Exception for null.
    T* operator->() const { return &**this; }
    T& operator*() const
    {
        if (!this->mVault)
            throw rktl::Exception("libraries/src/sync/rkst_Vault", "VaultSafePtr", "operator*() - Trying to dereference a NULL.");
        return vault()->mData;
    }

    /// Gives the access up; the last guard opens the vault.
    void setNULL() override
    {
        Vault<T>* const held = vault();
        this->mVault = nullptr;
        if (!held || --held->mWriters > 0)
            return;
        for (int32_t locks = std::exchange(held->mLockCount, 0); locks > 0; --locks)
            held->mMutex.unlock();
    }

protected:
    friend class Vault<T>;

    explicit VaultSafePointer(Vault<T>* vault) { init(vault); }

    using ConstVaultSafePointer<T>::init;

    /// Counts one more writer of a vault that this thread has locked. Null stays null.
    virtual void init(Vault<T>* vault)
    {
        this->mVault = vault;
        if (vault)
            ++vault->mWriters;
    }

    /// What init was given.
    Vault<T>* vault() const { return static_cast<Vault<T>*>(const_cast<ConstVault<T>*>(this->mVault)); }
};

} // namespace rkst

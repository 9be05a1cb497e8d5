#pragma once

#include "misc/rktl_SmartPtr.h"
#include "plugin/rkpl_Plugin.h"

namespace rkpl {

/// Counted pointer to a plug-in: the last reference calls release on the object, which came from another house and knows
/// best how to go. T derives from rkpl::Plugin.
template <class T> class PluginPtr : public rktl::SmartPtr<T> {
public:
    PluginPtr() = default;

    /// Takes the object over.
    explicit PluginPtr(T* object)
        : rktl::SmartPtr<T>(object)
    {
    }
    template <class U>
    requires std::convertible_to<U*, T*> PluginPtr(PluginPtr<U> const& source)
        : rktl::SmartPtr<T>(source)
    {
    }
    PluginPtr(PluginPtr const&) = default;
    PluginPtr& operator=(PluginPtr const&) = default;
    ~PluginPtr() override { PluginPtr::removeReference(); }

    void removeReference() override
    {
        this->dropReference([](T* object) { object->release(); });
    }

    /// Asks the object for another interface. True: result shares the count with this pointer. False, and result as before,
    /// when there is none or this pointer is null.
    template <class U> bool supports(char const* identifier, PluginPtr<U>& result) const
    {
        Plugin* found = nullptr;
        if (!*this || !this->get()->supports(identifier, &found))
            return false;
        result = PluginPtr<U>(*this, static_cast<U*>(found));
        return true;
    }

private:
    template <class U> friend class PluginPtr;

    template <class U>
    PluginPtr(PluginPtr<U> const& owner, T* view)
        : rktl::SmartPtr<T>(static_cast<rktl::SmartPtr<U> const&>(owner), view)
    {
    }
};

} // namespace rkpl

#pragma once

namespace rkpl {

/// Root of the interfaces: one object may answer for several, each under an identifier of its own.
class Plugin {
public:
    virtual ~Plugin() = default;

    /// Asks the object for another of its interfaces. identifier: the interface's, letter case ignored. True: result holds
    /// the address of that base, still owned by whoever owned the object. False: no such interface, result is as before.
    virtual bool supports(char const* identifier, Plugin** result) = 0;

    /// Destroys the object.
    virtual void release() { delete this; }

protected:
    /// For the bodies of supports: whether the identifier is that of Interface, and then its address among the bases of self.
    template <class Interface> static bool answers(Interface* self, char const* identifier, Plugin** result)
    {
        if (!isSameIdentifier(identifier, Interface::identifier))
            return false;
        *result = self;
        return true;
    }

private:
    static bool isSameIdentifier(char const* a, char const* b);
};

} // namespace rkpl

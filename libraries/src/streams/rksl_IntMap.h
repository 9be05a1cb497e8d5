#pragma once

#include "misc/rktl_Integer.h"
#include "streams/rksl_Map.h"

namespace rksl {

/// A map from a number to V, without an XML form. Type id 20000 + that of V, type name that of V + "IntMap".
template <class V> class IntMap : public Map<rktl::Integer, V> {
public:
    using Map<rktl::Integer, V>::Map;

    unsigned int internalTypeId() const override { return 20000 + V().getTypeId(); }
    rktl::String internalTypeName() const override { return V().getTypeName() + "IntMap"; }
};

} // namespace rksl

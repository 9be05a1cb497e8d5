#pragma once

#include "trackers/EventSpies/ObjectSpy.h"

/// An ObjectSpy on results of recognition, which objects carry as attributes: "Recognition Types" names namespaces, and in each
/// "Recognition Conf" says how sure the result "Recognition" is. The event's attribute "profile-guids" gets the surest result.
/// Classes have no effect.
class ProfileSpy : public ObjectSpy {
public:
    /// Frames below the least confidence leave an object under watch.
    ProfileSpy();
    /// The event comes as soon as the object goes unrecognised.
    ProfileSpy(char const* name, float minConfidence, rktl::ElapsedTime const& minValidTime);

    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    ProfileSpy* clone() const override;
    rktl::String getFriendlyName() const override;
    unsigned int getFilterMask() const override;
    rktl::String getRuleText() const override;

protected:
    void onNewEvent(Event& event, Frame const& frame) override;
    float computeConfidence(Object const& object) const override;
    /// recognition: becomes the surest result, where there is one.
    virtual float computeConfidence(Object const& object, rktl::String& recognition) const;
};

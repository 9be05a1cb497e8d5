#pragma once

#include "application/Settings.h"
#include "application/SimpleTracker.h"
#include "misc/rktl_ElapsedTime.h"
#include "streams/rksl_List.h"
#include "trackers/EventSpies/EventSpyFactory.h"

/// A file of rules, in the form that EventDetectorParams reads: "processing-interval", which may be missing, and one element for
/// each spy. It is written by people, so nothing in it is passed over: what no spy would read, and what would keep a spy from
/// working, is refused.
struct SpiesFile {
    rksl::List<EventSpyFactory> spies;
    rktl::ElapsedTime processingInterval; ///< 200 ms unless the file says otherwise

    /// Throws rktl::Exception; its text is "path: ", then the line, or the spy and the element, and what is wrong with it. So
    /// it does, too, where the program has no XML parser.
    static SpiesFile read(rktl::String const& path);
    /// The same from the text of a file.
    static SpiesFile parse(rktl::String const& file);

    /// Gives the spies to params, with the spacing of frames that the file asks for; they keep the classes that they name.
    /// alone: instead of those that are there.
    void addTo(SimpleTracker::Params& params, bool alone) const;
};

/// What "spies_file", relative to home, and "spies_only" say. False without the key, and when the file is refused, with the
/// reason in complaint; params is then as before. Throws nothing.
bool takeSpiesFile(SettingsMap const& settings, rktl::String const& home, SimpleTracker::Params& params, rktl::String& complaint);

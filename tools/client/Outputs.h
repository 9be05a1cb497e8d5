#pragma once

#include "BaseClasses/ObjectMap.h"
#include "Receiver.h"
#include "Recording.h"

#include <ostream>
#include <string>
#include <vector>

namespace tools {

/// One JSON line for each frame.
class TrackPrinter : public Receiver {
public:
    /// limit: frames; 0 for all.
    TrackPrinter(std::ostream& out, uint64_t limit)
        : mOut(out)
        , mLimit(limit)
    {
    }

    bool onFrame(Frame& frame) override;

private:
    std::ostream& mOut;
    uint64_t const mLimit;
    uint64_t mFrames = 0;
};

/// A PNG for each of the wanted images of each frame, such as 000012-Native_Image.png.
class PictureWriter : public Receiver {
public:
    struct Options {
        std::filesystem::path folder;   // made if need be
        std::vector<std::string> names; // empty: all that come
        bool overlay = false;           // enlarged, with the objects and their paths drawn in
        uint64_t limit = 0;             // frames with a picture; 0 for all
    };

    explicit PictureWriter(Options const& options);

    bool onFrame(Frame& frame) override;

    /// Of frames, those with a picture.
    uint64_t written() const { return mWritten; }
    uint64_t frames() const { return mFrames; }

private:
    bool write(Frame const& frame, std::string const& name) const;

    Options const mOptions;
    ObjectMap mObjects; // frames bring the newest box of each; here they grow to paths
    uint64_t mFrames = 0;
    uint64_t mWritten = 0;
};

/// All that comes, into a file.
class Recorder : public Receiver {
public:
    /// limit: frames; 0 for all.
    Recorder(std::filesystem::path const& path, uint64_t limit)
        : mFile(path)
        , mLimit(limit)
    {
    }

    void onObject(rksl::StreamData const& data) override { mFile.write(data); }
    bool onFrame(Frame& frame) override;
    uint64_t frames() const { return mFrames; }

private:
    RecordingWriter mFile;
    uint64_t const mLimit;
    uint64_t mFrames = 0;
};

/// One line that says how things are: renewed each second on a terminal, otherwise a new one.
class StatusLine : public Receiver {
public:
    StatusLine(std::ostream& out, bool isTerminal);
    ~StatusLine() override;

    bool onFrame(Frame& frame) override;
    void onHeartbeat(Heartbeat const& heartbeat) override;
    void onIdle() override;

private:
    void show(uint32_t now);

    std::ostream& mOut;
    bool const mIsTerminal;
    bool mDrawn = false;
    uint32_t mSince;         // tick of the last line in ms
    uint32_t mHeartbeatTick; // ms
    uint64_t mFrames = 0;    // since the last line
    std::string mObjects = "no frame yet";
    std::string mVideo; // what heartbeats say of it
};

} // namespace tools

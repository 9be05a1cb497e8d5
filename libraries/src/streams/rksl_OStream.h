#pragma once

namespace rksl {

class IStream;
class Serializable;

/// The writing half of an object stream; rksl::IStream tells the form of its frames.
class OStream {
public:
    virtual ~OStream() = default;

    /// Sends on what is held back, where a stream holds anything back.
    virtual void flush() = 0;

    /// Ends the stream with an end-of-file frame.
    virtual void close() = 0;

    /// Appends object as one frame. Returns the bytes of the frame, header included. Throws rktl::Exception when the object
    /// cannot be serialised or the stream takes nothing.
    virtual unsigned int write(Serializable const& object) = 0;

    /// write, for chains.
    virtual OStream& operator<<(Serializable const& object) = 0;

    /// Moves one frame from source to this stream, unchanged, whatever its type.
    virtual OStream& operator<<(IStream& source) = 0;

    /// Takes the next raw frame from source: source.readNextObject(data, length), the array being the caller's then.
    virtual bool getNextObject(IStream& source, unsigned char*& data, unsigned int& length);

protected:
    OStream() = default;
    OStream(OStream const&) = default;
    OStream& operator=(OStream const&) = default;
};

} // namespace rksl

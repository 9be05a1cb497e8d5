#pragma once

namespace rksl {

class Serializable;

/// The reading half of an object stream: frames of u16 type id, u16 reserved, u32 body length n and n body bytes, all
/// little-endian, one behind the other. A frame of type 1 (rksl::EndOfFile) ends the stream.
/// One thread reads a stream at a time.
class IStream {
public:
    virtual ~IStream() = default;

    /// Waits until there is something to read, looking once a millisecond. ms: limit in milliseconds of real time (a waiting
    /// reader must not depend on a replaced clock that stands still); 0xFFFFFFFF waits without end. False when the limit
    /// passed, true when data came. Throws what isEmpty throws.
    virtual bool wait(unsigned int ms) const;

    /// Type id of the next frame, which stays unread. Throws rktl::Exception when the stream cannot tell.
    virtual unsigned int getNextType() const = 0;

    /// Whether the next frame is an end of file. An empty stream is not at its end: more may come.
    virtual bool isEOF() const;

    /// Nothing to read at this moment.
    virtual bool isEmpty() const = 0;

    /// Reads the next frame into object, which has to be of that frame's type. Returns the bytes taken, header included.
    /// Throws rktl::Exception when there is no frame, the types differ or the body is not valid.
    virtual unsigned int read(Serializable& object) = 0;

    /// Drops the next frame. Returns its bytes, header included. Throws rktl::Exception when there is none.
    virtual unsigned int skip() = 0;

    /// read, for chains.
    virtual IStream& operator>>(Serializable& object) = 0;

    /// Takes the next frame as it stands, header included. data: becomes a new array that the caller frees with delete[];
    /// length: its bytes. False when no frame came; data and length are then as before.
    virtual bool readNextObject(unsigned char*& data, unsigned int& length) = 0;

protected:
    IStream() = default;
    IStream(IStream const&) = default;
    IStream& operator=(IStream const&) = default;
};

} // namespace rksl

#pragma once

#include "streams/rksl_IOStream.h"
#include "streams/rksl_Serializable.h"

#include <array>
#include <memory>
#include <span>

namespace rksl {

/// A queue of framed objects in memory: written at the back, read from the front. It can be stored like any record (u32 size,
/// then the frames), and saved to and loaded from a file of bare frames.
///
/// Errors are rktl::Exception with the class "rksl::MemIOStream". An operation that throws moves no position; what it read
/// into is then partly filled.
/// Not synchronised: each stream belongs to one thread at a time.
class MemIOStream : public Serializable, public IOStream {
public:
    /// capacity: bytes to allocate; 0 allocates nothing.
    explicit MemIOStream(unsigned int const& capacity = 0);

    /// Copies length bytes of frames, as setBuffer does.
    MemIOStream(unsigned char const* data, unsigned int const& length);

    /// Copies the live bytes into storage of the same capacity.
    MemIOStream(MemIOStream const& other);
    MemIOStream& operator=(MemIOStream const& other);

    // The stream as an object. fromBin takes the bytes that the u32 in front announces, and throws
    // "setBuffer() - resulting memory is not valid." when they are not there or are no whole frames.
    unsigned int getTypeId() const override;
    rktl::String getTypeName() const override;
    using Serializable::toXML;
    rktl::String toXML(char const* tag) const override; ///< throws: a stream has no XML form
    bool fromXML(char const* xml) override;             ///< throws: a stream has no XML form
    unsigned int getBinLength() const override;
    unsigned int toBin(unsigned char* out) const override;
    unsigned int fromBin(unsigned char const* in, unsigned int length) override;

    // Writing. What does not fit into 4 GiB, and an object that cannot be serialised, throws
    // "couldn't convert object to binary data".
    void flush() override; ///< does nothing
    void close() override;
    unsigned int write(Serializable const& object) override;
    MemIOStream& operator<<(Serializable const& object) override;
    MemIOStream& operator<<(IStream& source) override;

    // Reading.
    /// 1 (end of file) when the stream is empty. Throws "getNextType() - no data" for less than a header.
    unsigned int getNextType() const override;
    bool isEmpty() const override;
    unsigned int read(Serializable& object) override;

    /// read without taking the frame.
    virtual unsigned int peek(Serializable& object) const;

    /// Throws "skip() - no data" when no whole frame is there.
    unsigned int skip() override;
    MemIOStream& operator>>(Serializable& object) override;
    bool readNextObject(unsigned char*& data, unsigned int& length) override; ///< throws: cannot be the source of raw frames

    /// Looks at the first count frames without taking them: each is read into the object at its place, null passes over one.
    /// count: how many of the objects given to use; 0 is the result when it is more than were given.
    /// Returns the bytes walked, or 0 when the stream has fewer frames; a frame counts only when at least one byte follows its
    /// header, so a closing end of file is never seen. Throws like peek of one object.
    template <class... More> unsigned int peek(unsigned int count, Serializable* first, More... more) const
    {
        std::array<Serializable*, 1 + sizeof...(More)> const objects{first, static_cast<Serializable*>(more)...};
        return count <= objects.size() ? peekFrames(std::span(objects).first(count)) : 0;
    }

    /// Whether the first count frames are of the types of the objects; null matches any type. Walks as peek does.
    /// Throws "checkTypes() - no data" for less than a header.
    template <class... More> bool checkTypes(unsigned int count, Serializable* first, More... more) const
    {
        std::array<Serializable*, 1 + sizeof...(More)> const objects{first, static_cast<Serializable*>(more)...};
        return count <= objects.size() && checkFrameTypes(std::span(objects).first(count));
    }

    /// Number of whole frames.
    virtual unsigned int count() const;

    // The buffer.
    unsigned int capacity() const; ///< bytes allocated
    unsigned int size() const;     ///< live bytes: written and not yet read
    void clear();                  ///< drops the contents, keeps the storage
    void purge();                  ///< frees the storage
    void defrag();                 ///< moves the live bytes to the start of the storage
    void reserve(unsigned int n);  ///< makes the capacity n when it is less

    /// Makes room for n bytes behind the live ones, by moving those to the front of the storage where that is enough, otherwise
    /// by growing to twice the capacity plus n. False when that is no 32-bit size; the stream is then as before.
    bool checkBuff(unsigned int n);

    /// Appends n bytes to be filled in by the caller, who gets their address in data; null when there can be no such room.
    /// finalizeBuffer then gives back what was not used. The address is good until the next change of the stream.
    void getWriteBuffer(unsigned char*& data, unsigned int n);

    /// used: bytes behind data that are to stay. Only ever shortens: more than was taken changes nothing.
    void finalizeBuffer(unsigned char const* data, unsigned int used);

    /// The live bytes, which stay the stream's; null and 0 when there are none.
    void getBuffer(unsigned char const*& data, unsigned int& length) const;

    /// Replaces the contents by a copy of length bytes; null or 0 empties the stream. Throws
    /// "setBuffer() - resulting memory is not valid." when they are no chain of whole frames, and keeps them all the same.
    void setBuffer(unsigned char const* data, unsigned int length);

    /// Whether the live bytes are whole frames; none at all are.
    bool validate() const;

    /// Writes the live bytes to a file, replacing it. False when that fails.
    bool save(char const* path) const;

    /// Replaces the contents by those of a file. False when it cannot be read, or holds no chain of whole frames (those bytes
    /// are then in the stream). Never throws.
    bool load(char const* path);

protected:
    virtual bool checkFrameTypes(std::span<Serializable* const> objects) const;
    virtual unsigned int peekFrames(std::span<Serializable* const> objects) const;

private:
    struct FrameView;

    bool frameAt(unsigned char const* position, FrameView& frame) const;
    bool firstFrame(FrameView& frame) const;
    bool visibleFrame(unsigned char const* position, FrameView& frame) const;
    static void readBody(Serializable& object, FrameView const& frame, char const* operation);
    void reallocate(unsigned int newCapacity);

    std::unique_ptr<unsigned char[]> mStart;
    unsigned char* mEnd = nullptr;   // one behind the storage
    unsigned char* mRead = nullptr;  // first live byte
    unsigned char* mWrite = nullptr; // one behind the last live byte; mStart <= mRead <= mWrite <= mEnd
};

} // namespace rksl

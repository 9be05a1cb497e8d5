#include "BaseClasses/ProcessFrame.h"

#include "misc/rktl_Exception.h"

#include <algorithm>

namespace {

rktl::Exception failure(std::string const& message)
{
    return rktl::Exception("projects/src/BaseClasses/ProcessFrame", "ProcessFrame", message);
}

} // namespace

ProcessFrame::~ProcessFrame()
{
    clearUntracked();
}

unsigned int ProcessFrame::getWidth() const
{
    return static_cast<unsigned int>(std::max<int32_t>(mResolution.width, 0));
}

unsigned int ProcessFrame::getHeight() const
{
    return static_cast<unsigned int>(std::max<int32_t>(mResolution.height, 0));
}

// ---- Images ----

rkil::MultiImage& ProcessFrame::setImageOf(rktl::String const& name)
{
    if (mSetImages.find(name) == mSetImages.end())
        mSetImages.insert(name);
    return image(name);
}

void ProcessFrame::setImage(rktl::String const& name, rkil::ImageBase const& source, unsigned int types)
{
    setImageOf(name);
    Frame::setImage(name, source, types);
}

void ProcessFrame::setImage(rktl::String const& name, rk_image const& source, unsigned int types)
{
    rkil::MultiImage& target = setImageOf(name);
    target.setTypes(types);
    target = source;
}

void ProcessFrame::setBGRY(rktl::String const& name, rk_image const& source)
{
    rkil::MultiImage& target = setImageOf(name);
    target.setTypes(1 | 2);
    target.setBGRY(source);
}

void ProcessFrame::swapImage(rktl::String const& name, rk_image& source, unsigned int types)
{
    rkil::MultiImage& target = setImageOf(name);
    target.setTypes(types);
    target.swapData(source);
}

void ProcessFrame::addType(rktl::String const& name, unsigned int types)
{
    if (mSetImages.find(name) == mSetImages.end())
        throw failure("addType() - that image type is not set");
    image(name).addType(types);
}

void ProcessFrame::unsetImage(rktl::String const& name)
{
    mSetImages.erase(name);
}

bool ProcessFrame::isImageSet(rktl::String const& name, unsigned int types) const
{
    if (mSetImages.find(name) == mSetImages.end())
        return false;
    auto const found = images().find(name);
    unsigned int const there = (found != images().end() ? found->second.getTypes() : 0u) | (getGPUImage(name) ? gpuType : 0u);
    return there != 0 && (there & types) == types;
}

rkil::MultiImage const& ProcessFrame::getMultiImage(rktl::String const& name) const
{
    auto const found = images().find(name);
    if (mSetImages.find(name) == mSetImages.end() || found == images().end())
        throw failure("getMultiImage() - image type is not set: " + name);
    return found->second;
}

rkil::MultiImage const* ProcessFrame::imageToWrite(rktl::String const& name) const
{
    return mSetImages.find(name) != mSetImages.end() ? Frame::imageToWrite(name) : nullptr;
}

void ProcessFrame::setGPUImage(rktl::String const& name, rkgpu_image* gpuImage)
{
    mGPUImages[name] = gpuImage;
}

rkgpu_image* ProcessFrame::getGPUImage(rktl::String const& name) const
{
    auto const found = mGPUImages.find(name);
    return found != mGPUImages.end() ? found->second : nullptr;
}

void ProcessFrame::clearImages()
{
    Frame::clearImages();
    mSetImages.clear();
    mGPUImages.clear();
}

void ProcessFrame::upscaleImages(rksl::Set<rktl::String> const& names)
{
    for (rktl::String const& name : names) {
        auto const found = images().find(name);
        if (found == images().end() || mSetImages.find(name) == mSetImages.end())
            continue;
        rkil::MultiImage grown(found->second.getTypes());
        found->second.grow(grown);
        images().erase(found);
        images().emplace(name, std::move(grown));
    }
}

void ProcessFrame::compressImages(rksl::Set<rktl::String> const& names, rkvl::Resolution const&)
{
    constexpr unsigned int jpeg = 4;
    for (rktl::String const& name : names)
        if (mSetImages.find(name) != mSetImages.end() && Frame::isImageSet(name, UINT32_MAX))
            addType(name, jpeg);
}

void ProcessFrame::clearUnrequested() { }

// ---- Regions ----

ProcessFrame::Untracked& ProcessFrame::openUntracked(rktl::String const& name)
{
    auto const [entry, isNew] = mUntracked.try_emplace(name);
    if (isNew)
        entry->second.untracked = true;
    return entry->second;
}

void ProcessFrame::spliceUntracked(rk_vertex** list, rktl::String const& name, unsigned int limit)
{
    if (!list || !*list || limit == 0)
        return;
    rk_vertex* const first = *list;
    rk_vertex* last = first;
    uint32_t moved = 1;
    for (; moved < limit && last->next; ++moved)
        last = last->next;
    *list = last->next;
    Untracked& entry = openUntracked(name);
    last->next = entry.vertices;
    entry.vertices = first;
    entry.count += moved;
}

void ProcessFrame::addUntracked(rkml::BoundingBox<int> const& box, rktl::String const& name, float motionScore)
{
    Untracked& entry = openUntracked(name);
    entry.vertices = new rk_vertex{static_cast<uint32_t>(box.x), static_cast<uint32_t>(box.y), static_cast<uint32_t>(box.width),
        static_cast<uint32_t>(box.height), motionScore, entry.vertices};
    ++entry.count;
}

rk_vertex* ProcessFrame::getUntracked(rktl::String const& name, unsigned int& count) const
{
    auto const found = mUntracked.find(name);
    count = found != mUntracked.end() ? found->second.count : 0;
    return found != mUntracked.end() ? found->second.vertices : nullptr;
}

void ProcessFrame::classifyUntracked(rktl::String const& name, rktl::String const& className)
{
    mUntracked[name].className = className;
}

rktl::String ProcessFrame::getUntrackedClass(rktl::String const& name) const
{
    auto const found = mUntracked.find(name);
    return found != mUntracked.end() ? found->second.className : rktl::String();
}

void ProcessFrame::maskAsTracked(rktl::String const& name)
{
    auto const found = mUntracked.find(name);
    if (found != mUntracked.end())
        found->second.untracked = false;
}

rksl::Set<rktl::String> ProcessFrame::nameUntracked() const
{
    rksl::Set<rktl::String> names;
    for (auto const& [name, entry] : mUntracked)
        if (entry.untracked)
            names.insert(name);
    return names;
}

void ProcessFrame::clearUntracked(rktl::String const& name)
{
    auto const found = mUntracked.find(name);
    if (found == mUntracked.end())
        return;
    rk_free_vertices(&found->second.vertices);
    mUntracked.erase(found);
}

void ProcessFrame::clearUntracked()
{
    for (auto& [name, entry] : mUntracked)
        rk_free_vertices(&entry.vertices);
    mUntracked.clear();
}

void ProcessFrame::clear()
{
    clearButImages();
    mEvents.clear();
    clearUntracked();
    mSetImages.clear();
    mGPUImages.clear();
}

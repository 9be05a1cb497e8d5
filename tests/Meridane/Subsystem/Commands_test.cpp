#include "Meridane/Subsystem/CameraCmd.h"
#include "Meridane/Subsystem/ConnectionCmd.h"
#include "Meridane/Subsystem/SummaryQuery.h"
#include "Meridane/Subsystem/TrackerCmd.h"
#include "misc/rktl_url.h"
#include "support/bytes.h"

#include <gtest/gtest.h>

using rktl::url;
using support::messageOf;

namespace {

url const gate("meridane://box.localsite/gate");
url const machine("meridane://box.localsite");
char const* const guid = "00112233-4455-6677-8899-aabbccddeeff";

CameraParams paramsOf(char const* name)
{
    CameraParams params;
    params.setName(name);
    return params;
}

/// What a server gets: the record off the wire, taken over.
template <class Typed> Typed received(rksl::Command const& sent)
{
    rksl::Command record;
    support::fromBin(record, support::toBin(sent));
    return Typed(record);
}

// A family is a number on the wire; what the text forms say is fixed, since audits and logs are made of them.
TEST(Commands, AreToldApartByNumbers)
{
    struct {
        rksl::Command const& command;
        int type;
        unsigned int subType;
        bool audit;
        char const* name;
    } const cases[] = {
        {ConnectionCmd::connect(gate), 3004, 0, false, "ConnectionCmd Connect Camera"},
        {ConnectionCmd::disconnect(gate), 3004, 1, false, "ConnectionCmd Disconnect Camera"},
        {ConnectionCmd::frameRequest(gate, {}), 3004, 2, false, "ConnectionCmd Request Frames"},
        {TrackerCmd::queryImages(gate), 3012, 0, false, "TrackerCmd Query Debug Images"},
        {TrackerCmd::removeObject(gate, 7), 3012, 1, false, "TrackerCmd Remove Object"},
        {TrackerCmd::lock(gate), 3012, 2, false, "TrackerCmd Lock Tracking"},
        {TrackerCmd::unlock(gate), 3012, 3, false, "TrackerCmd Unlock Tracking"},
        {CameraCmd::load(gate, {}), 3002, 0, false, "CameraCmd Load Cameras"},
        {CameraCmd::reload(machine), 3002, 1, false, "CameraCmd Reload Cameras"},
        {CameraCmd::add(gate, paramsOf("gate"), true), 3002, 2, true, "CameraCmd Add Camera"},
        {CameraCmd::remove(gate), 3002, 3, true, "CameraCmd Remove Camera"},
        {CameraCmd::set(gate, paramsOf("gate")), 3002, 4, true, "CameraCmd Set Camera"},
        {CameraCmd::rename(gate, "door"), 3002, 5, true, "CameraCmd Rename Camera"},
        {CameraCmd::getParams(gate), 3002, 6, false, "CameraCmd Get Camera Params"},
        {CameraCmd::query(machine), 3002, 7, false, "CameraCmd Query Cameras"},
        {CameraCmd::disable(gate), 3002, 8, true, "CameraCmd Disable Camera"},
        {CameraCmd::enable(gate), 3002, 9, true, "CameraCmd Enable Camera"},
        {CameraCmd::canAdd(gate, paramsOf("x")), 3002, 10, false, "CameraCmd CanAdd"},
        {CameraCmd::getInfo(gate), 3002, 11, false, "CameraCmd GetInfo"},
        {CameraCmd::getSummaries(gate, true), 3002, 12, false, "CameraCmd Get Track Summaries"},
        {CameraCmd::querySummaries({}), 3002, 13, false, "CameraCmd Query Track Summaries"},
        {CameraCmd::countSummaries({}), 3002, 14, false, "CameraCmd Count Track Summaries"},
        {CameraCmd::getImage(gate), 3002, 15, false, "CameraCmd Get Reference Image"},
        {CameraCmd::ptz(gate, rkvl::PTZCmd::queryPresets("dvc://dome/")), 3002, 16, false, "CameraCmd PTZ"},
        {CameraCmd::queryCameraStatus(gate), 3002, 17, false, "CameraCmd Query Camera Status"},
        {CameraCmd::queryEnrollmentCameras(gate), 3002, 18, false, "CameraCmd Query Enrollment Cameras"},
        {CameraCmd::move(gate, "other"), 3002, 19, true, "CameraCmd Move Camera"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.type, c.command.getCommandType());
        EXPECT_EQ(c.subType, c.command.getCommandSubType());
        EXPECT_EQ(c.audit, c.command.getAudit());
        EXPECT_EQ(c.name, c.command.getCommandName() + " " + c.command.getCommandString());
        EXPECT_EQ(13u, c.command.getTypeId());
        EXPECT_TRUE(c.command.getID().isValid());
        EXPECT_NO_THROW(support::toBin(c.command)) << "a factory makes only what can be sent";
    }
    EXPECT_EQ("Undefined(200)", CameraCmd::query(gate).getCommandSubName(200));
    EXPECT_EQ("Query Cameras", CameraCmd(rksl::Command("x:/", 3002, 7)).getCommandString()) << "whatever the url";
}

#define MAKE(command) [](url const& u) -> rksl::Command { return command; }

TEST(Commands, RefuseUrlsThatNameNothingOfTheirKind)
{
    using Make = rksl::Command (*)(url const&);
    char const* const notVideo = "ConnectionCmd::Invalid Video URL:  Domain must be specified and scheme must be DVC or MERIDANE";
    struct {
        char const* url;
        Make make;
        std::string refusal;
    } const cases[] = {
        {"http://box/gate", MAKE(CameraCmd::query(u)), "MeridaneCmd::Unable to validate URL."},
        {"MERIDANE://box.site", MAKE(CameraCmd::query(u)), ""},
        {"DVC:/x", MAKE(CameraCmd::query(u)), ""},
        {"http://box/gate", MAKE(ConnectionCmd::connect(u)), notVideo},
        {"dvc:/gate", MAKE(ConnectionCmd::connect(u)), notVideo},
        {"dvc://dome", MAKE(ConnectionCmd::connect(u)), ""},
        {"meridane://box.site", MAKE(ConnectionCmd::connect(u)),
            "ConnectionCmd::Invalid Camera URL:  Machine and Camera must be set."},
        {"dvc:/gate", MAKE(ConnectionCmd::disconnect(u)), "ConnectionCmd::Invalid Video URL:  Domain cannot be empty."},
        {"meridane://box.site", MAKE(ConnectionCmd::disconnect(u)),
            "ConnectionCmd::Invalid Video  URL:  Machine and Camera must be set."},
        {"meridane://box.site", MAKE(TrackerCmd::queryImages(u)),
            "TrackerCmd::Invalid URL:  Camera and Machine field must be defined."},
        {"dvc://box/gate", MAKE(TrackerCmd::lock(u)), "TrackerCmd::Invalid URL:  Camera and Machine field must be defined."},
        {"meridane:/gate", MAKE(CameraCmd::reload(u)), "CameraCmd::remove - must provide a valid machine."},
        {"meridane://box.site", MAKE(CameraCmd::add(u, paramsOf(""), true)),
            "CameraCmd::Add - must provide a valid machine and camera."},
        {"meridane://box.site/gate", MAKE(CameraCmd::add(u, paramsOf("Gate"), true)),
            "CameraCmd::URI camera name does not match params name."},
        {"meridane://box.site/gate", MAKE(CameraCmd::set(u, paramsOf(""))),
            "CameraCmd::URI camera name does not match params name."},
        {"meridane://box.site", MAKE(CameraCmd::set(u, paramsOf(""))),
            "CameraCmd::Set - must provide a valid machine and camera."},
        {"meridane://box.site", MAKE(CameraCmd::remove(u)), "CameraCmd::Remove - must provide a valid machine and camera."},
        {"meridane://box.site", MAKE(CameraCmd::getParams(u)), "CameraCmd::GetParams - must provide a valid machine and camera."},
        {"meridane://box.site", MAKE(CameraCmd::getImage(u)), "CameraCmd::GetImage - must provide a valid machine and camera."},
        {"meridane://box.site", MAKE(CameraCmd::rename(u, "")), "CameraCmd::Rename - must provide a valid machine and camera."},
        {"meridane://box.site/gate", MAKE(CameraCmd::rename(u, "")), "CameraCmd::rename - must provide a valid camera name."},
        {"meridane://box.site", MAKE(CameraCmd::ptz(u, rkvl::PTZCmd::queryPresets("dvc://a"))),
            "CameraCmd::PTZ - must provide a valid machine and camera."},
        {"meridane://box.site", MAKE(CameraCmd::queryCameraStatus(u)),
            "CameraCmd::QueryCameraStatus - must provide a valid machine and camera."},
    };
    for (auto const& c : cases)
        EXPECT_EQ(c.refusal, messageOf([&] { c.make(url(c.url)); })) << c.url;
}

TEST(Commands, CarryTheirArguments)
{
    FrameRequest request;
    request.fps = 10;
    request.imageTypes = {"Native Image"};
    EXPECT_EQ(10, received<ConnectionCmd>(ConnectionCmd::frameRequest(gate, request)).getFrameRequest().fps);
    EXPECT_EQ(4000000000u, received<TrackerCmd>(TrackerCmd::removeObject(gate, 4000000000u)).getObjectID());

    auto const added = received<CameraCmd>(CameraCmd::add(gate, paramsOf("gate"), true));
    EXPECT_EQ("gate", added.getParams().getName());
    EXPECT_TRUE(added.getBoolean());
    EXPECT_FALSE(received<CameraCmd>(CameraCmd::getSummaries(gate, false)).getBoolean());
    EXPECT_EQ("door", received<CameraCmd>(CameraCmd::rename(gate, "door")).getNewName());
    EXPECT_EQ("mill", received<CameraCmd>(CameraCmd::move(gate, "mill")).getNewName());

    rksl::StringMap<CameraParams> loaded;
    received<CameraCmd>(CameraCmd::load(gate, {{"a", paramsOf("a")}, {"b", paramsOf("b")}})).getCameraMap(loaded);
    EXPECT_EQ(2u, loaded.size());
    EXPECT_EQ("b", loaded["b"].getName());

    SummaryQuery query, asked;
    query.setTimes(rktl::TimeStamp(1700000000, 250, true), {});
    query.setLimit(5);
    auto const counted = received<CameraCmd>(CameraCmd::countSummaries(query));
    counted.getQuery(asked);
    EXPECT_EQ(query, asked);
    EXPECT_EQ(1700000000, asked.getFirst().getSeconds());
    EXPECT_FALSE(asked.getLast().isSet());
    EXPECT_EQ(5u, asked.getLimit());
    EXPECT_EQ("meridane://*.localsite/*/", counted.getURL());

    auto const moved = received<CameraCmd>(CameraCmd::ptz(gate, rkvl::PTZCmd::gotoPreset("door", "dvc://dome/"))).getPTZCmd();
    EXPECT_EQ("PTZCmd::GotoPreset", moved.getCommandString());
    EXPECT_EQ("door", moved.getPreset());
    EXPECT_EQ("dvc://dome", moved.getURL());

    auto set = received<CameraCmd>(CameraCmd::set(
        gate, "<CameraParams name=\"gate\"><video-url>v:/</video-url></CameraParams>", rktl::TimeStamp(100, 0, true)));
    EXPECT_EQ(100, set.getParams().getRevision().getSeconds());
    set.setRevision(rktl::TimeStamp(200, 0, true));
    EXPECT_EQ(200, set.getParams().getRevision().getSeconds());
    EXPECT_EQ("v:/", set.getParams().getVideoURL());
    EXPECT_EQ(1u, set.getObjectStream()->count());
    EXPECT_EQ("CameraCmd::Set - must provide the XML of camera params.",
        messageOf([] { CameraCmd::set(gate, "gate", rktl::TimeStamp(1, 0, true)); }));
}

TEST(Commands, RefuseToGiveWhatTheyDoNotCarry)
{
    CameraCmd command = CameraCmd::query(gate);
    rksl::StringMap<CameraParams> map;
    SummaryQuery query;
    EXPECT_EQ("CameraCmd::getParams - only usable with a set/add Command ", messageOf([&] { command.getParams(); }));
    EXPECT_EQ("CameraCmd::getBoolean - only usable with a summaries or add Command ", messageOf([&] { command.getBoolean(); }));
    EXPECT_EQ("CameraCmd::getNewName() - only usable with a rename/move commands.", messageOf([&] { command.getNewName(); }));
    EXPECT_EQ("CameraCmd::getCameraMap - only usable with a load Command ", messageOf([&] { command.getCameraMap(map); }));
    EXPECT_EQ("CameraCmd::getQuery - only usable with a summaries Command ", messageOf([&] { command.getQuery(query); }));
    EXPECT_EQ("CameraCmd::getPTZCmd - only usable with a PTZ Command ", messageOf([&] { command.getPTZCmd(); }));
    EXPECT_NE("", messageOf([&] { command.setRevision(rktl::TimeStamp()); }));
    EXPECT_EQ("ConnectionCmd::getFrameRequest() - only usable on a FrameRequest Command",
        messageOf([] { ConnectionCmd::connect(gate).getFrameRequest(); }));
    // The right sub type, but nothing in the stream, or something else.
    for (unsigned int subType : {CameraCmd::addCamera, CameraCmd::getTrackSummaries}) {
        CameraCmd const bare(rksl::Command("a:/", CameraCmd::family, subType));
        EXPECT_THROW(bare.getBoolean(), rktl::Exception) << subType;
        bare.getObjectStream()->write(rktl::String("x"));
        EXPECT_THROW(bare.getBoolean(), rktl::Exception) << subType;
    }
    EXPECT_THROW(ConnectionCmd(rksl::Command("a:/", 3004, 2)).getFrameRequest(), rktl::Exception);
}

TEST(Commands, TellAnAuditWhatTheyDo)
{
    url const named(rktl::String("meridane://box.site/gate/line?camera-guid=") + guid);
    EXPECT_EQ("Add camera [gate]", CameraCmd::add(gate, paramsOf("gate"), false).getCommandDescription());
    EXPECT_EQ("Remove camera [gate]", CameraCmd::remove(named).getCommandDescription());
    EXPECT_EQ("Set camera [gate]", CameraCmd::set(named, paramsOf("gate")).getCommandDescription());
    EXPECT_EQ("Rename camera [gate] to [door]", CameraCmd::rename(gate, "door").getCommandDescription());
    EXPECT_EQ("Disable camera [gate]", CameraCmd::disable(gate).getCommandDescription());
    EXPECT_EQ("Enable camera [gate]", CameraCmd::enable(gate).getCommandDescription());
    EXPECT_EQ("", CameraCmd::move(gate, "x").getCommandDescription());

    CameraCmd const command = CameraCmd::remove(named);
    rksl::StringMap<rktl::String> attributes = {{"kept", "1"}};
    command.getCommandAttributes(attributes);
    EXPECT_EQ((rksl::StringMap<rktl::String>{{"camera-guid", guid}, {"kept", "1"}}), attributes);
    EXPECT_EQ("gate", command.getCameraName(false));
    EXPECT_EQ("line", command.getSpyName(false));
    EXPECT_EQ("box", command.getMachineName());
    EXPECT_EQ("[All Cameras]", CameraCmd::querySummaries({}).getCameraName(true));
    CameraCmd const bare(rksl::Command("dvc://dome", CameraCmd::family, CameraCmd::removeCamera));
    EXPECT_EQ("Remove camera []", bare.getCommandDescription());
    EXPECT_EQ("", bare.getMachineName());
}

// 0x34 = 52 bytes of frames: 8 of header and 44 of request; in those 24 bytes of frames of an empty set.
TEST(FrameRequest, RidesInTheObjectStream)
{
    FrameRequest request;
    request.tracks = 1;
    request.fps = 10;
    EXPECT_EQ(support::hex("34000000 02000000 2C000000 01000000 0A000000 18000000 F8010000 04000000 F5010000"
                           "F8010000 04000000 00000000 00000000 00000000"),
        support::toBin(*ConnectionCmd::frameRequest(gate, request).getObjectStream()));
    EXPECT_EQ(2u, request.getTypeId());
    support::expectEveryPrefixThrows<FrameRequest>(support::toBin(request));
}

} // namespace

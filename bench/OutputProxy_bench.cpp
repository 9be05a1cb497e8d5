#include "Meridane/Subsystem/OutputProxy.h"

#include "BaseClasses/Object.h"
#include "BaseClasses/ProcessFrame.h"
#include "Meridane/Subsystem/ConnectionCmd.h"
#include "image/rk_image.h"
#include "misc/rktl_url.h"
#include "streams/rksl_NetIOStream.h"
#include "streams/rksl_NetStreamServer.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <thread>
#include <vector>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

// What clients cost: frames of 640 x 480 gray with the tracks of five objects, over TCP on this machine. Times are of the
// frame thread's processor (serialise, deliver) or of the whole process (idle, steady).

namespace {

constexpr unsigned int width = 640, height = 480;
constexpr int framesEachSecond = 25;

double processorSeconds(clockid_t clock)
{
    timespec time;
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// How long the runs in real time last.
double runSeconds()
{
    char const* const text = std::getenv("CONTRAFLOW_BENCH_SECONDS");
    return text ? std::atof(text) : 5.0;
}

void fill(ProcessFrame& frame)
{
    rk_image image;
    rk_init_image(&image, width, height, 1);
    for (unsigned int i = 0; i < image.size; ++i)
        image.data[i] = static_cast<unsigned char>(i * 7);
    for (char const* name : {"Native Image", "Foreground Image", "Activity Image", "Peripheral Image", "Processed Image"})
        frame.setImage(name, image, 2);
    rk_free_image(&image);
    for (int id = 1; id <= 5; ++id) {
        Object& object = frame.getObjects()[id];
        object.setId(uint32_t(id));
        object.setState(Object::tracked);
        for (int step = 0; step < 100; ++step)
            object.insert(rkml::BoundingBox<int>(step, id * 40, step + 20, id * 40 + 30), {},
                rktl::TimeStamp(1700000000, uint16_t(step * 9), false));
    }
}

rksl::Set<rktl::String> nativeImage()
{
    rksl::Set<rktl::String> names;
    names.insert("Native Image");
    return names;
}

/// Two ends of one TCP connection of this machine.
struct TcpPair {
    TcpPair()
    {
        int const door = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof(address);
        auto* const name = reinterpret_cast<sockaddr*>(&address);
        client = socket(AF_INET, SOCK_STREAM, 0);
        if (bind(door, name, length) != 0 || listen(door, 1) != 0 || getsockname(door, name, &length) != 0 ||
            connect(client, name, length) != 0)
            std::abort();
        server = accept(door, nullptr, nullptr);
        close(door);
    }

    int server, client;
};

/// Connects, asks for frames if it is told to, and counts those that come.
class Client {
public:
    enum Kind { reading, stuck, idle };

    Client(OutputProxy& proxy, Kind kind)
    {
        TcpPair const pair;
        rktl::SmartPtr<rksl::IOStream> stream(new rksl::NetIOStream(pair.server, 50));
        proxy.addStream(stream);
        mSocket = pair.client;
        if (kind != idle)
            requestFrames();
        if (kind != stuck)
            mThread = std::thread([this] { read(); });
    }

    ~Client()
    {
        shutdown(mSocket, SHUT_RDWR);
        if (mThread.joinable())
            mThread.join();
        close(mSocket);
    }

    Client(Client const&) = delete;
    Client& operator=(Client const&) = delete;

    unsigned int frames() const { return mFrames; }

private:
    void requestFrames()
    {
        FrameRequest request;
        request.tracks = 1;
        request.fps = 2000; // above 1000 there is no least time between frames: each one is due
        request.imageTypes = nativeImage();
        rksl::StreamData frame;
        frame.fromObj(ConnectionCmd::frameRequest(rktl::url("meridane://m/c"), request));
        if (send(mSocket, frame.getBytes(), frame.getLength(), 0) != ssize_t(frame.getLength()))
            std::abort();
    }

    bool take(unsigned char* out, size_t count) { return recv(mSocket, out, count, MSG_WAITALL) == ssize_t(count); }

    void read()
    {
        std::vector<unsigned char> body;
        unsigned char header[rksl::FrameHeader::size];
        while (take(header, sizeof(header))) {
            rksl::FrameHeader const frame = rksl::FrameHeader::read(header);
            body.resize(frame.bodyLength);
            if (frame.bodyLength > 0 && !take(body.data(), body.size()))
                return;
            mFrames += frame.type == 3;
        }
    }

    int mSocket;
    std::atomic<unsigned int> mFrames = 0;
    std::thread mThread;
};

void waitUntilAsked(OutputProxy& proxy)
{
    rksl::Set<rktl::String> images;
    rkvl::Resolution size;
    while (images.empty())
        proxy.getRequestedImages(images, size);
    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // all of them
}

/// The goal is at most twice the time of copying the bytes of the frame twice; times_two_copies tells how many times it is.
void serialiseFrame(benchmark::State& state)
{
    ProcessFrame frame;
    fill(frame);
    frame.setImageNames(nativeImage());
    frame.setHasObjects(true);
    size_t const length = frame.getBinLength();
    std::vector<unsigned char> from(length, 1), to(length);
    double copies = 0, serialising = 0;
    for (auto _ : state) {
        double const start = processorSeconds(CLOCK_THREAD_CPUTIME_ID);
        for (int i = 0; i < 2; ++i) {
            std::memcpy(to.data(), from.data(), length);
            benchmark::ClobberMemory();
        }
        double const copied = processorSeconds(CLOCK_THREAD_CPUTIME_ID);
        rksl::StreamData data; // as each client gets one of its own
        benchmark::DoNotOptimize(data.fromObj(frame));
        serialising += processorSeconds(CLOCK_THREAD_CPUTIME_ID) - copied;
        copies += copied - start;
    }
    double const rounds = static_cast<double>(state.iterations());
    state.counters["bytes"] = static_cast<double>(length);
    state.counters["us_each"] = serialising / rounds * 1e6;
    state.counters["times_two_copies"] = serialising / copies;
}
BENCHMARK(serialiseFrame);

/// The frame thread's time for one frame to that many clients.
void deliverFrame(benchmark::State& state)
{
    OutputProxy proxy(0, nullptr);
    proxy.startStreamServers();
    std::vector<std::unique_ptr<Client>> clients;
    for (int i = 0; i < state.range(0); ++i)
        clients.push_back(std::make_unique<Client>(proxy, Client::reading));
    waitUntilAsked(proxy);
    ProcessFrame frame;
    fill(frame);
    double spent = 0;
    for (auto _ : state) {
        double const start = processorSeconds(CLOCK_THREAD_CPUTIME_ID);
        proxy.updateFrameListeners(frame);
        spent += processorSeconds(CLOCK_THREAD_CPUTIME_ID) - start;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    state.counters["us_each_client"] = spent * 1e6 / static_cast<double>(state.iterations() * state.range(0));
    clients.clear();
}
BENCHMARK(deliverFrame)->Arg(1)->Arg(10)->Iterations(500)->UseRealTime();

/// 25 frames a second to clients that read, with one beside them that does not: frames that the readers did not get, and the
/// share of one core that all of it takes, the clients' reading included.
void steadyFrames(benchmark::State& state)
{
    OutputProxy proxy(0, nullptr);
    proxy.startStreamServers();
    std::vector<std::unique_ptr<Client>> clients;
    for (int i = 0; i < state.range(0); ++i)
        clients.push_back(std::make_unique<Client>(proxy, Client::reading));
    if (state.range(1))
        clients.push_back(std::make_unique<Client>(proxy, Client::stuck));
    waitUntilAsked(proxy);
    ProcessFrame frame;
    fill(frame);
    unsigned int const count = static_cast<unsigned int>(runSeconds() * framesEachSecond);
    double slowest = 0;
    for (auto _ : state) {
        double const start = processorSeconds(CLOCK_PROCESS_CPUTIME_ID);
        auto next = std::chrono::steady_clock::now();
        for (unsigned int i = 0; i < count; ++i) {
            auto const before = std::chrono::steady_clock::now();
            proxy.updateFrameListeners(frame);
            slowest = std::max(slowest, std::chrono::duration<double>(std::chrono::steady_clock::now() - before).count());
            std::this_thread::sleep_until(next += std::chrono::milliseconds(1000 / framesEachSecond));
        }
        state.counters["core_share"] = (processorSeconds(CLOCK_PROCESS_CPUTIME_ID) - start) / runSeconds();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    unsigned int lost = 0;
    for (int i = 0; i < state.range(0); ++i)
        lost += count - clients[size_t(i)]->frames();
    state.counters["frames"] = count;
    state.counters["lost"] = lost;
    state.counters["slowest_ms"] = slowest * 1e3;
    clients.clear();
}
BENCHMARK(steadyFrames)->Args({1, 0})->Args({10, 0})->Args({9, 1})->Iterations(1)->UseRealTime();

/// Nobody asks for anything: milliseconds of processor a minute, and the share of one core.
void idleServer(benchmark::State& state)
{
    OutputProxy proxy(0, nullptr);
    proxy.addStreamServer(new rksl::NetStreamServer(0, 0xFFFFFFFF, 50, 100), false); // a port that the system chooses
    proxy.startStreamServers();
    std::vector<std::unique_ptr<Client>> clients;
    for (int i = 0; i < state.range(0); ++i)
        clients.push_back(std::make_unique<Client>(proxy, Client::idle));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    for (auto _ : state) {
        double const start = processorSeconds(CLOCK_PROCESS_CPUTIME_ID);
        std::this_thread::sleep_for(std::chrono::duration<double>(runSeconds()));
        double const spent = processorSeconds(CLOCK_PROCESS_CPUTIME_ID) - start;
        state.counters["ms_each_minute"] = spent / runSeconds() * 60e3;
        state.counters["core_percent"] = spent / runSeconds() * 100;
    }
    clients.clear();
}
BENCHMARK(idleServer)->Arg(0)->Arg(10)->Iterations(1)->UseRealTime();

} // namespace

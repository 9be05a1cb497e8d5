#pragma once

#include <functional>
#include <thread>

namespace camera {

/// Starts a thread on which no signal is delivered: the application's handlers run on its own threads.
std::thread startQuietThread(std::function<void()> body);

} // namespace camera

// What other libraries offer in place of our operations: the nearest call, on images of the same size and content.
#ifndef ODX_BENCH_PEERS_H
#define ODX_BENCH_PEERS_H

#include "operations/draw.h"

#include <functional>
#include <vector>

namespace odx::bench
{

struct Peer {
    const char* operation; // ours
    const char* library;
    // Makes the images and returns the call to be timed.
    std::function<void()> (*prepare)(const test::Measurement& measurement);
};

// The peers of each family; empty where the library was not installed when the benchmark was built.
std::vector<Peer> colorPeers();
std::vector<Peer> cornersPeers();
std::vector<Peer> smoothingPeers();

std::vector<Peer> allPeers();

} // namespace odx::bench

#endif

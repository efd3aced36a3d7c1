// What other libraries offer in place of our operations: the nearest call, on images of the same size and content.
//
// A peer is an entry of a list: our operation, and a function that makes the images and returns the call to be
// measured. The lists stand in opencv/ and libyuv/, a file for each family. A file registers its list by defining
// it, and is built where its library is installed; nothing else has to know of it:
//
//     #include "opencv/opencv.h"
//
//     #include <opencv2/imgproc.hpp>
//
//     static const odx::bench::OpencvPeers arithmetic = {
//         {"odxAddu8", matrices({CV_8U, CV_8U}, [](Matrices& m) { cv::add(m.src[0], m.src[1], m.dst); })},
//         {"odxScaleDownBy2u8", matrices({CV_8U}, [](Matrices& m) { cv::pyrDown(m.src[0], m.dst); })},
//     };
//
// matrices() makes a matrix of each type, of the measurement's size and content (its picture where the type is
// CV_8U and there is one, else noise), and an empty `dst`. libyuv/images.h has the same for planes and packed
// pixels. A peer whose images are of another kind is a function of its own from the measurement to the call. The
// call runs once before it is measured, so that what it allocates is there; it must stay on its thread. An
// operation may have a peer in each library.
#ifndef ODX_BENCH_PEERS_H
#define ODX_BENCH_PEERS_H

#include "operations/draw.h"

#include <functional>
#include <string>
#include <vector>

namespace odx::bench
{

using Call = std::function<void()>;

struct Peer {
    std::string operation; // ours
    std::function<Call(const test::Measurement&)> prepare;
    std::string library = {}; // the list's
};

// A list of peers, registered by its definition at namespace scope.
class Peers
{
public:
    Peers(const char* library, const std::vector<Peer>& peers)
    {
        for (const Peer& peer : peers)
            all().push_back({peer.operation, peer.prepare, library});
    }

    // Those of one operation, in the order of their libraries' names.
    static std::vector<Peer> of(const std::string& operation)
    {
        std::vector<Peer> found;
        for (const Peer& peer : all()) {
            if (peer.operation == operation) found.push_back(peer);
        }
        std::sort(found.begin(), found.end(), [](const Peer& a, const Peer& b) { return a.library < b.library; });
        return found;
    }

private:
    static std::vector<Peer>& all()
    {
        static std::vector<Peer> peers;
        return peers;
    }
};

} // namespace odx::bench

#endif

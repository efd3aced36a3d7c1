// The k-d tree over 36s8 descriptors: best bin first.
#include "cpu/ondrixDotC.h"
#include "frame/heap.h"
#include "frame/log.h"

#include <limits.h>
#include <string.h>

using namespace odx;

namespace
{

constexpr const char* kSource = "ondrixKDTree36s8f32C";
constexpr int kLength = 36;
constexpr int kNoChild = -1;
constexpr int kMostSampled = 100; // besides the first
constexpr int kCandidates = 5;    // dimensions of high variance, of which one is drawn

// The minimal standard generator of Park and Miller. A positive argument is the new state.
int32_t randValue(int32_t seed)
{
    static int32_t state = 1;
    if (seed > 0) {
        __atomic_store_n(&state, seed, __ATOMIC_RELAXED);
        return 0;
    }
    const int32_t old = __atomic_load_n(&state, __ATOMIC_RELAXED);
    int32_t next = 16807 * (old % 127773) - 2836 * (old / 127773);
    if (next <= 0) next += INT32_MAX;
    __atomic_store_n(&state, next, __ATOMIC_RELAXED);
    return next;
}

// Every draw seeds the generator and so is 0: trees of the same vectors are the same.
int drawBelow(int count)
{
    return static_cast<int>(static_cast<double>(randValue(100)) / 2147483648.0 * count);
}

// What a query touches stands close together: it waits for memory more than for anything else.
struct Node {
    float split;       // of a leaf: the inverse length of its vector
    int32_t dimension; // of a leaf: its vector
    int32_t right;     // the left child is the next node

    bool isLeaf() const { return right == kNoChild; }
};

// Nodes that were passed by, as a heap by their bounds and numbers: both in one number, as bounds are not
// negative.
typedef uint64_t Branch;

Branch branchTo(float bound, int32_t node)
{
    uint32_t bits;
    memcpy(&bits, &bound, sizeof bits);
    return Branch{bits} << 32 | static_cast<uint32_t>(node);
}
float boundOf(Branch branch)
{
    const uint32_t bits = static_cast<uint32_t>(branch >> 32);
    float bound;
    memcpy(&bound, &bits, sizeof bound);
    return bound;
}
int32_t nodeOf(Branch branch)
{
    return static_cast<int32_t>(branch & 0xFFFFFFFF);
}

struct Found {
    int32_t index;
    float distance;

    bool before(const Found& other) const
    {
        return distance < other.distance || (!(other.distance < distance) && index < other.index);
    }
};

struct Frame {
    int lo, hi;
    int32_t* slot; // receives the number of the node
};

template <class T>
T* allocate(size_t count)
{
    // One element more, so that none is asked for nothing.
    return count > SIZE_MAX / sizeof(T) - 1 ? nullptr : static_cast<T*>(heapAlloc((count + 1) * sizeof(T)));
}

struct NodePool {
    Node* nodes;
    int32_t taken;
};

} // namespace

struct odxKDTree36s8f32 {
    int count;
    const int8_t* vectors;
    float* invLengths;
    NodePool* pool;
    int32_t root;
    int32_t* indices;
    Branch* heap;
    int heapSize;

    const int8_t* vector(int32_t index) const { return vectors + kLength * static_cast<size_t>(index); }
    float at(int32_t index, int dimension) const
    {
        return invLengths[index] * static_cast<float>(vector(index)[dimension]);
    }
};

namespace
{

using Tree = odxKDTree36s8f32;

void release(Tree* tree)
{
    heapFree(tree->heap);
    heapFree(tree->indices);
    if (tree->pool != nullptr) heapFree(tree->pool->nodes);
    heapFree(tree->pool);
    heapFree(tree->invLengths);
    heapFree(tree);
}

// ---- build ----

int KDTrees36s8f32_Init(Tree* KDTrees36s8f32_tree)
{
    KDTrees36s8f32_tree->pool = allocate<NodePool>(1);
    ODX_FATAL_ASSERT(kSource, __LINE__, KDTrees36s8f32_tree->pool);
    Node* const nodes = allocate<Node>(2 * static_cast<size_t>(KDTrees36s8f32_tree->count));
    *KDTrees36s8f32_tree->pool = {nodes, 0};
    if (nodes != nullptr) return 0;
    ODX_LOG(Error, "NULL storage pointer\n");
    return -1;
}

void shuffleIndices(Tree& tree)
{
    for (int i = 0; i < tree.count; ++i)
        tree.indices[i] = i;
    const int size_Local = tree.count;
    for (int i = size_Local; i > 0; --i) {
        const int rnd = drawBelow(i);
        ODX_FATAL_ASSERT(kSource, __LINE__, rnd >=0 && rnd < size_Local);
        const int32_t last = tree.indices[i - 1];
        tree.indices[i - 1] = tree.indices[rnd];
        tree.indices[rnd] = last;
    }
}

// The dimension of high variance, and its mean, over a sample of the range.
void chooseSplit(const Tree& tree, int lo, int hi, Node& node)
{
    const int last = hi - lo > kMostSampled ? lo + kMostSampled : hi;
    const float n = static_cast<float>(last - lo + 1);
    float mean[kLength] = {}, variance[kLength] = {};
    for (int i = lo; i <= last; ++i) {
        const int32_t index = tree.indices[i];
        for (int d = 0; d < kLength; ++d)
            mean[d] += tree.at(index, d);
    }
    for (float& m : mean)
        m /= n;
    for (int i = lo; i <= last; ++i) {
        const int32_t index = tree.indices[i];
        for (int d = 0; d < kLength; ++d) {
            const float difference = tree.at(index, d) - mean[d];
            variance[d] += difference * difference;
        }
    }
    for (float& v : variance)
        v /= n;

    int best[kCandidates], num = 0;
    for (int d = 0; d < kLength; ++d) {
        if (num == kCandidates && !(variance[d] > variance[best[num - 1]])) continue;
        int place = num < kCandidates ? num++ : num - 1;
        for (; place > 0 && variance[d] > variance[best[place - 1]]; --place)
            best[place] = best[place - 1];
        best[place] = d;
    }
    const int rnd = drawBelow(num);
    ODX_FATAL_ASSERT(kSource, __LINE__, rnd >=0 && rnd < num);
    node.dimension = best[rnd];
    node.split = mean[best[rnd]];
}

// Entries below the split value come first; returns the first of the others.
int partition(Tree& tree, int lo, int hi, const Node& node)
{
    int a = lo, b = hi;
    while (a <= b) {
        if (tree.at(tree.indices[a], node.dimension) < node.split) {
            ++a;
        } else {
            const int32_t swapped = tree.indices[a];
            tree.indices[a] = tree.indices[b];
            tree.indices[b] = swapped;
            --b;
        }
    }
    return a == lo || a == hi + 1 ? static_cast<int>((static_cast<int64_t>(lo) + hi + 1) / 2) : a;
}

// Depth first, the left side first, so that nodes are numbered in pre-order. -1: no memory; -2: no vectors.
int buildIndex(Tree& tree)
{
    if (tree.count == 0) return -2;
    const size_t count = static_cast<size_t>(tree.count);
    struct {
        int top;
        int64_t maxSize;
        Frame* frames;
    } callStack = {0, static_cast<int64_t>(2 * count), allocate<Frame>(2 * count)};
    tree.indices = allocate<int32_t>(count);
    tree.heap = allocate<Branch>(count + 1);
    if (callStack.frames == nullptr || tree.indices == nullptr || tree.heap == nullptr) {
        heapFree(callStack.frames);
        return -1;
    }
    shuffleIndices(tree);

    const auto push = [&callStack](Frame frame) {
        ODX_FATAL_ASSERT(kSource, __LINE__, callStack.top < callStack.maxSize - 1);
        callStack.frames[callStack.top++] = frame;
    };
    int32_t unused;
    push({0, tree.count - 1, &tree.root});
    while (callStack.top > 0) {
        const Frame frame = callStack.frames[--callStack.top];
        const int32_t number = tree.pool->taken++;
        Node& node = tree.pool->nodes[number];
        *frame.slot = number;
        if (frame.lo == frame.hi) {
            const int32_t index = tree.indices[frame.lo];
            node = {tree.invLengths[index], index, kNoChild};
            continue;
        }
        chooseSplit(tree, frame.lo, frame.hi, node);
        const int split = partition(tree, frame.lo, frame.hi, node);
        push({split, frame.hi, &node.right});
        push({frame.lo, split - 1, &unused});
    }
    heapFree(callStack.frames);
    return 0;
}

// ---- query ----

void push(Tree& tree, Branch branch)
{
    int i = tree.heapSize++;
    for (; i > 0 && branch < tree.heap[(i - 1) / 2]; i = (i - 1) / 2)
        tree.heap[i] = tree.heap[(i - 1) / 2];
    tree.heap[i] = branch;
}

// The hole goes down to the end by choices that need no branch, and the last one, which is rarely far from there,
// up to its place.
Branch pop(Tree& tree)
{
    Branch* const heap = tree.heap;
    const Branch least = heap[0];
    const int size = --tree.heapSize;
    int hole = 0;
    for (int child = 1; child < size; child = 2 * hole + 1) {
        child += heap[child + 1] < heap[child] ? 1 : 0; // the last one stands behind them
        heap[hole] = heap[child];
        hole = child;
    }
    const Branch moved = heap[size];
    for (; hole > 0 && moved < heap[(hole - 1) / 2]; hole = (hole - 1) / 2)
        heap[hole] = heap[(hole - 1) / 2];
    heap[hole] = moved;
    return least;
}

struct Query {
    Tree& tree;
    const int8_t* vector;
    float invLength;
    int maxChecks;
    Found* results; // sorted
    int capacity, found, checks;
    float scaled[kLength];

    bool full() const { return found == capacity; }
    float worst() const { return results[found - 1].distance; }
    bool isBeyond(float bound) const { return full() && worst() < bound; }
    bool isDone() const { return checks >= maxChecks && full(); }

    void insert(Found candidate)
    {
        if (full() && !candidate.before(results[found - 1])) return;
        int place = full() ? found - 1 : found++;
        for (; place > 0 && candidate.before(results[place - 1]); --place)
            results[place] = results[place - 1];
        results[place] = candidate;
    }

    void visit(const Node& leaf)
    {
        if (isDone()) return;
        ++checks;
        const int8_t* const candidate = tree.vector(leaf.dimension);
        float distance;
        odxSumOfSquaredDiffs36xNs8(vector, invLength, &candidate, &leaf.split, 1, &distance);
        insert({leaf.dimension, distance});
    }

    float difference(const Node& node) const { return scaled[node.dimension] - node.split; }

    // Every vector stands in one leaf and is looked at once. The results change only there, at the end.
    void descend(Branch branch)
    {
        const float bound = boundOf(branch);
        if (isBeyond(bound)) return;
        int32_t number = nodeOf(branch);
        const Node* const nodes = tree.pool->nodes;
        while (!nodes[number].isLeaf()) {
            const Node& node = nodes[number];
            const float difference = this->difference(node), farBound = bound + difference * difference;
            const bool left = difference < 0;
            const int32_t far = left ? node.right : number + 1;
            if ((!full() || farBound < worst()) && tree.heapSize <= tree.count) {
                __builtin_prefetch(nodes + far);
                push(tree, branchTo(farBound, far));
            }
            number = left ? number + 1 : node.right;
        }
        visit(nodes[number]);
    }

    // The vector that a descent will end at is fetched while another one is under way.
    void prefetch(Branch branch) const
    {
        int32_t number = nodeOf(branch);
        const Node* const nodes = tree.pool->nodes;
        while (!nodes[number].isLeaf())
            number = difference(nodes[number]) < 0 ? number + 1 : nodes[number].right;
        const int8_t* const candidate = tree.vector(nodes[number].dimension);
        __builtin_prefetch(candidate);
        __builtin_prefetch(candidate + kLength - 1);
    }
};

} // namespace

int odxKDTreeCreate36s8f32C(const int8_t* vectors, const float* invLengths, int numVectors,
                            odxKDTree36s8f32** kdtrees)
{
    const size_t count = static_cast<size_t>(numVectors);
    Tree* const tree = allocate<Tree>(1);
    float* const lengths = allocate<float>(count);
    if (tree == nullptr || lengths == nullptr) {
        heapFree(lengths);
        heapFree(tree);
        return 1;
    }
    *tree = {numVectors, vectors, lengths, nullptr, kNoChild, nullptr, nullptr, 0};
    memcpy(lengths, invLengths, count * sizeof *lengths);
    const int status = KDTrees36s8f32_Init(tree);
    if (status != 0) {
        release(tree);
        return status;
    }
    // A tree whose index could not be built stays empty.
    if (buildIndex(*tree) != 0) tree->root = kNoChild;
    *kdtrees = tree;
    return 0;
}

int odxKDTreeQuery36s8f32C(odxKDTree36s8f32* kdtree, const int8_t* query, float queryInvLen, int maxNNs,
                           float maxDist, int maxChecks, int, uint32_t* numNNsFound, int32_t* NNInds,
                           float* NNDists)
{
    Tree& tree = *kdtree;
    const int capacity = maxNNs < tree.count ? maxNNs : tree.count;
    if (capacity == 0 || tree.root == kNoChild) {
        *numNNsFound = 0;
        return 0;
    }
    constexpr int kFew = 64;
    Found few[kFew];
    Found* const results = capacity <= kFew ? few : allocate<Found>(static_cast<size_t>(capacity));
    if (results == nullptr) return -1;
    tree.heapSize = 0;
    Query search = {tree, query, queryInvLen, maxChecks, results, capacity, 0, 0, {}};
    for (int d = 0; d < kLength; ++d)
        search.scaled[d] = static_cast<float>(query[d]) * queryInvLen;
    search.descend(branchTo(0, tree.root));
    // Where the least bound is beyond the worst result, so are all.
    while (tree.heapSize > 0 && !search.isDone() && !search.isBeyond(boundOf(tree.heap[0]))) {
        const Branch least = pop(tree);
        if (tree.heapSize > 0) search.prefetch(tree.heap[0]);
        search.descend(least);
    }

    uint32_t written = 0;
    for (; written < static_cast<uint32_t>(search.found) && results[written].distance < maxDist; ++written) {
        NNInds[written] = results[written].index;
        NNDists[written] = results[written].distance;
    }
    *numNNsFound = written;
    if (results != few) heapFree(results);
    return 0;
}

int odxKDTreeDestroy36s8f32C(odxKDTree36s8f32* kdtree)
{
    release(kdtree);
    return 0;
}

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
constexpr int kFirstStamp = -1000;
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

struct Record {
    const int8_t* vector;
    float invLength;

    float at(int dimension) const { return invLength * static_cast<float>(vector[dimension]); }
};

struct Node {
    int32_t dimension; // of a leaf: its vector
    float split;
    int32_t children[2];

    bool isLeaf() const { return children[0] == kNoChild; } // then it has no other
};

// Nodes that were passed by, as a heap by their bounds.
struct Branch {
    float bound;
    int32_t node;
};

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
    Record* records;
    NodePool* pool;
    int32_t root;
    int32_t* indices;
    Branch* heap;
    int heapSize;
    int32_t* stamps;
    int32_t stamp;
};

namespace
{

using Tree = odxKDTree36s8f32;

void release(Tree* tree)
{
    heapFree(tree->stamps);
    heapFree(tree->heap);
    heapFree(tree->indices);
    if (tree->pool != nullptr) heapFree(tree->pool->nodes);
    heapFree(tree->pool);
    heapFree(tree->records);
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
        const Record& record = tree.records[tree.indices[i]];
        for (int d = 0; d < kLength; ++d)
            mean[d] += record.at(d);
    }
    for (float& m : mean)
        m /= n;
    for (int i = lo; i <= last; ++i) {
        const Record& record = tree.records[tree.indices[i]];
        for (int d = 0; d < kLength; ++d) {
            const float difference = record.at(d) - mean[d];
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
        if (tree.records[tree.indices[a]].at(node.dimension) < node.split) {
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
    tree.stamps = allocate<int32_t>(count);
    if (callStack.frames == nullptr || tree.indices == nullptr || tree.heap == nullptr || tree.stamps == nullptr) {
        heapFree(callStack.frames);
        return -1;
    }
    memset(tree.stamps, 0, sizeof *tree.stamps * count);
    shuffleIndices(tree);

    const auto push = [&callStack](Frame frame) {
        ODX_FATAL_ASSERT(kSource, __LINE__, callStack.top < callStack.maxSize - 1);
        callStack.frames[callStack.top++] = frame;
    };
    push({0, tree.count - 1, &tree.root});
    while (callStack.top > 0) {
        const Frame frame = callStack.frames[--callStack.top];
        const int32_t number = tree.pool->taken++;
        Node& node = tree.pool->nodes[number];
        *frame.slot = number;
        if (frame.lo == frame.hi) {
            node = {tree.indices[frame.lo], 0, {kNoChild, kNoChild}};
            continue;
        }
        node = {0, 0, {kNoChild, kNoChild}};
        chooseSplit(tree, frame.lo, frame.hi, node);
        const int split = partition(tree, frame.lo, frame.hi, node);
        push({split, frame.hi, &node.children[1]});
        push({frame.lo, split - 1, &node.children[0]});
    }
    heapFree(callStack.frames);
    return 0;
}

// ---- query ----

void push(Tree& tree, Branch branch)
{
    int i = tree.heapSize++;
    for (; i > 0 && branch.bound < tree.heap[(i - 1) / 2].bound; i = (i - 1) / 2)
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
        child += heap[child + 1].bound < heap[child].bound ? 1 : 0; // the last one stands behind them
        heap[hole] = heap[child];
        hole = child;
    }
    const Branch moved = heap[size];
    for (; hole > 0 && moved.bound < heap[(hole - 1) / 2].bound; hole = (hole - 1) / 2)
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

    // A vector stands in one leaf, and its stamp keeps it from being looked at twice: it is never among the
    // results.
    void visit(int32_t index)
    {
        if (tree.stamps[index] == tree.stamp || isDone()) return;
        ++checks;
        tree.stamps[index] = tree.stamp;
        const Record& record = tree.records[index];
        float distance;
        odxSumOfSquaredDiffs36xNs8(vector, invLength, &record.vector, &record.invLength, 1, &distance);
        insert({index, distance});
    }

    void descend(Branch branch)
    {
        while (!isBeyond(branch.bound)) {
            const Node& node = tree.pool->nodes[branch.node];
            if (node.isLeaf()) {
                visit(node.dimension);
                return;
            }
            const float difference = static_cast<float>(vector[node.dimension]) * invLength - node.split;
            const int side = difference < 0 ? 0 : 1;
            const Branch far = {branch.bound + difference * difference, node.children[1 - side]};
            if ((!full() || far.bound < worst()) && tree.heapSize <= tree.count) push(tree, far);
            branch.node = node.children[side];
        }
    }
};

} // namespace

int odxKDTreeCreate36s8f32C(const int8_t* vectors, const float* invLengths, int numVectors,
                            odxKDTree36s8f32** kdtrees)
{
    const size_t count = static_cast<size_t>(numVectors);
    Tree* const tree = allocate<Tree>(1);
    Record* const records = allocate<Record>(count);
    if (tree == nullptr || records == nullptr) {
        heapFree(records);
        heapFree(tree);
        return 1;
    }
    *tree = {numVectors, records, nullptr, kNoChild, nullptr, nullptr, 0, nullptr, kFirstStamp};
    for (size_t i = 0; i < count; ++i)
        records[i] = {vectors + kLength * i, invLengths[i]};
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
    // When the counter has been through all numbers, the stamps begin anew.
    if (tree.stamp == INT32_MIN) {
        memset(tree.stamps, 0, sizeof *tree.stamps * static_cast<size_t>(tree.count));
        tree.stamp = kFirstStamp;
    }
    --tree.stamp;
    tree.heapSize = 0;
    Query search = {tree, query, queryInvLen, maxChecks, results, capacity, 0, 0};
    search.descend({0, tree.root});
    // Where the least bound is beyond the worst result, so are all.
    while (tree.heapSize > 0 && !search.isDone() && !search.isBeyond(tree.heap[0].bound))
        search.descend(pop(tree));

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

// The tree of spatial hashes beside a k-d tree library with a dynamic index.

#include "BenchmarkSupport.h"

#include <ImportCommon/DxKDTree.h>

#ifdef HAVE_NANOFLANN
#include <nanoflann.hpp>
#endif

#include <ctime>
#include <memory>
#include <utility>

using namespace ImportCommon;

namespace {

constexpr unsigned int dimension = 11;
constexpr double tolerance = 0.01;

using Hash = std::array<double, dimension>;
using Hashes = std::vector<Hash>;

/** Objects of any place and size in a site of a hundred metres. */
Hashes randomObjects(std::size_t count) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> coordinate(0, 100);
    std::uniform_real_distribution<double> radius(0.1, 10);
    Hashes hashes(count);
    for (Hash& hash : hashes) {
        for (unsigned int i = 0; i < dimension; ++i) {
            hash[i] = i < 3 ? coordinate(random) : radius(random);
        }
    }
    return hashes;
}

Hash equalObject(double x, double y, double z) {
    Hash hash = {x, y, z};
    std::fill(hash.begin() + 3, hash.end(), 0.87);
    return hash;
}

/** Equal objects, two metres apart, stored row by row and layer by layer. */
Hashes lattice(std::size_t count) {
    std::size_t side = 1;
    while (side * side * side < count) {
        ++side;
    }
    Hashes hashes;
    for (std::size_t i = 0; i < count; ++i) {
        hashes.push_back(equalObject(2.0 * static_cast<double>(i % side), 2.0 * static_cast<double>(i / side % side),
                                     2.0 * static_cast<double>(i / side / side)));
    }
    return hashes;
}

/** Equal objects, two metres apart along x. */
Hashes line(std::size_t count) {
    Hashes hashes;
    for (std::size_t i = 0; i < count; ++i) {
        hashes.push_back(equalObject(2.0 * static_cast<double>(i), 0, 0));
    }
    return hashes;
}

Hashes descendingLine(std::size_t count) {
    Hashes hashes = line(count);
    std::reverse(hashes.begin(), hashes.end());
    return hashes;
}

class Tree {
public:
    explicit Tree(const Hashes& hashes) : hashes_(hashes) {}

    void insert(std::size_t i) { benchmark::DoNotOptimize(tree_.insert(hashes_[i].data())); }
    bool find(const Hash& hash) { return tree_.find(hash.data()) != CDxKDTree::NotFound; }

private:
    const Hashes& hashes_;
    CDxKDTree tree_{dimension};
};

#ifdef HAVE_NANOFLANN
/** The hashes that are in the index, as the index wants to see them. */
struct Cloud {
    const Hashes& hashes;
    std::size_t count = 0;

    std::size_t kdtree_get_point_count() const { return count; }
    double kdtree_get_pt(std::size_t i, std::size_t axis) const { return hashes[i][axis]; }
    template <typename Box>
    bool kdtree_get_bbox(Box&) const {
        return false;
    }
};

/** The dynamic index without a search. */
class DynamicIndex {
public:
    explicit DynamicIndex(const Hashes& hashes) : cloud_{hashes} {}

protected:
    void add(std::size_t i) {
        ++cloud_.count;
        const auto added = static_cast<std::uint32_t>(i);
        index_.addPoints(added, added);
    }
    template <typename Result>
    void search(Result& result, const Hash& hash) {
        index_.findNeighbors(result, hash.data(), nanoflann::SearchParams());
    }
    const Hash& hash(std::size_t i) const { return cloud_.hashes[i]; }
    bool isEmpty() const { return cloud_.count == 0; }

private:
    using Distance = nanoflann::L1_Adaptor<double, Cloud>;
    Cloud cloud_;
    nanoflann::KDTreeSingleIndexDynamicAdaptor<Distance, Cloud, dimension> index_{static_cast<int>(dimension), cloud_};
};

/** Finds the nearest neighbour and then looks how near it is. */
class NearestNeighbour : public DynamicIndex {
public:
    using DynamicIndex::DynamicIndex;

    void insert(std::size_t i) {
        if (isEmpty() || !find(hash(i))) {
            add(i);
        }
    }
    bool find(const Hash& hash) {
        std::uint32_t nearest = 0;
        double distance = 0;
        nanoflann::KNNResultSet<double, std::uint32_t> result(1);
        result.init(&nearest, &distance);
        search(result, hash);
        return result.size() == 1 && distance < tolerance;
    }
};

/** Finds all within the tolerance. */
class RadiusSearch : public DynamicIndex {
public:
    using DynamicIndex::DynamicIndex;

    void insert(std::size_t i) {
        if (isEmpty() || !find(hash(i))) {
            add(i);
        }
    }
    bool find(const Hash& hash) {
        nanoflann::RadiusResultSet<double, std::uint32_t> result(tolerance, found_);
        search(result, hash);
        return !found_.empty();
    }

private:
    std::vector<std::pair<std::uint32_t, double>> found_;
};
#endif

template <typename Index>
void registerAll(benchmark::State& state, const Hashes& hashes) {
    for (auto _ : state) {
        auto index = std::make_unique<Index>(hashes);
        for (std::size_t i = 0; i < hashes.size(); ++i) {
            index->insert(i);
        }
        state.PauseTiming();
        index.reset();
        state.ResumeTiming();
    }
}

template <typename Index>
void findAll(benchmark::State& state, const Hashes& hashes) {
    Index index(hashes);
    for (std::size_t i = 0; i < hashes.size(); ++i) {
        index.insert(i);
    }
    const Hashes atRandom = shuffled(hashes);
    for (auto _ : state) {
        for (const Hash& hash : atRandom) {
            benchmark::DoNotOptimize(index.find(hash));
        }
    }
}

/** Each a little moved, as by a text form with four digits. */
Hashes movedOf(Hashes hashes) {
    for (Hash& hash : hashes) {
        for (double& component : hash) {
            component += 0.00005;
        }
    }
    return hashes;
}

/** The next import: finds all once, in the order that is given. */
template <typename Index>
void findMoved(benchmark::State& state, const Hashes& hashes, const Hashes& moved) {
    for (auto _ : state) {
        state.PauseTiming();
        auto index = std::make_unique<Index>(hashes);
        for (std::size_t i = 0; i < hashes.size(); ++i) {
            index->insert(i);
        }
        state.ResumeTiming();
        for (const Hash& hash : moved) {
            benchmark::DoNotOptimize(index->find(hash));
        }
        state.PauseTiming();
        index.reset();
        state.ResumeTiming();
    }
}

/** Processor time of this thread; unlike the wall's it leaves out when others run. */
double threadTime() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

/** The longest single call of registering all and finding all, moved, in random order. */
void longestCall(benchmark::State& state, const Hashes& hashes) {
    const Hashes moved = shuffled(movedOf(hashes));
    double longest = 0;
    const auto measure = [&longest](const auto& call) {
        const double begin = threadTime();
        call();
        longest = std::max(longest, threadTime() - begin);
    };
    for (auto _ : state) {
        Tree tree(hashes);
        for (std::size_t i = 0; i < hashes.size(); ++i) {
            measure([&] { tree.insert(i); });
        }
        for (const Hash& hash : moved) {
            measure([&] { benchmark::DoNotOptimize(tree.find(hash)); });
        }
    }
    state.counters["longest"] = longest;
}

template <typename Index>
void addIndex(const std::string& objects, std::size_t count, Hashes (*make)(std::size_t), const char* name) {
    const std::string end = objects + "/" + std::to_string(count) + "/" + name;
    addBenchmark("tree/register " + end, count,
                 [=](benchmark::State& state) { registerAll<Index>(state, make(count)); });
    addBenchmark("tree/find " + end, count, [=](benchmark::State& state) { findAll<Index>(state, make(count)); });
    addBenchmark("tree/find moved " + end, count, [=](benchmark::State& state) {
        findMoved<Index>(state, make(count), shuffled(movedOf(make(count))));
    });
}

const bool added = [] {
    for (const std::size_t count : std::initializer_list<std::size_t>{20000, 100000, 1000000}) {
        addIndex<Tree>("random", count, randomObjects, "library");
        addIndex<Tree>("lattice", count, lattice, "library");
#ifdef HAVE_NANOFLANN
        if (count < 1000000) { // which takes minutes
            addIndex<NearestNeighbour>("random", count, randomObjects, "nanoflann, nearest");
            addIndex<NearestNeighbour>("lattice", count, lattice, "nanoflann, nearest");
        }
        addIndex<RadiusSearch>("random", count, randomObjects, "nanoflann, radius");
        addIndex<RadiusSearch>("lattice", count, lattice, "nanoflann, radius");
#endif
    }
    for (const std::size_t count : std::initializer_list<std::size_t>{10000, 20000, 50000, 100000}) {
        addIndex<Tree>("line", count, line, "library");
        addIndex<Tree>("descending line", count, descendingLine, "library");
        addBenchmark("tree/find moved in order line/" + std::to_string(count) + "/library", count,
                     [=](benchmark::State& state) { findMoved<Tree>(state, line(count), movedOf(line(count))); });
        addBenchmark("tree/find moved in order descending line/" + std::to_string(count) + "/library", count,
                     [=](benchmark::State& state) {
                         findMoved<Tree>(state, descendingLine(count), movedOf(descendingLine(count)));
                     });
    }
    for (const auto& [objects, make] : std::initializer_list<std::pair<std::string, Hashes (*)(std::size_t)>>{
             {"random", randomObjects}, {"lattice", lattice}, {"line", line}, {"descending line", descendingLine}}) {
        addBenchmark("tree/longest call " + objects + "/100000/library", 100000,
                     [make = make](benchmark::State& state) { longestCall(state, make(100000)); })
            ->Iterations(1);
    }
    return true;
}();

} // namespace

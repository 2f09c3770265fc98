#pragma once
// Two ways to the same result, measured in turns, so that whatever else the machine does meets both. One
// round runs each of them once, and the first of a round is the second of the next.

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace cairnfield {

struct Cost {
    double wall = 0;       ///< seconds
    double processor = 0;  ///< seconds, of this process with all threads, and of the children waited for
};

inline double processorSeconds() {
    double total = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        for (const timeval& time : {usage.ru_utime, usage.ru_stime})
            total += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    }
    return total;
}

template <class F>
Cost costOf(const F& work) {
    const double processor = processorSeconds();
    const auto begin = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - begin;
    return {wall.count(), processorSeconds() - processor};
}

inline double medianOf(std::vector<Cost> costs, double Cost::* part) {
    const auto middle = costs.begin() + static_cast<std::ptrdiff_t>(costs.size() / 2);
    std::ranges::nth_element(costs, middle, {}, part);
    return (*middle).*part;
}

/// One iteration is one round. The benchmark's own time is that of `ours`; the ratios of the medians are its
/// counters. `tidy` comes before each of the two and is not measured.
template <class Ours, class Peer, class Tidy>
void measureSideBySide(benchmark::State& state, const Ours& ours, const Peer& peer, const Tidy& tidy) {
    std::vector<Cost> ourCosts;
    std::vector<Cost> peerCosts;
    bool peerFirst = true;
    const auto measure = [&tidy](std::vector<Cost>& costs, const auto& work) {
        tidy();
        costs.push_back(costOf(work));
    };
    for (auto _ : state) {
        if (peerFirst) measure(peerCosts, peer);
        measure(ourCosts, ours);
        if (!peerFirst) measure(peerCosts, peer);
        peerFirst = !peerFirst;
        state.SetIterationTime(ourCosts.back().wall);
    }
    const auto report = [&state, &ourCosts, &peerCosts](const std::string& name, double Cost::* part) {
        const double ourMedian = medianOf(ourCosts, part);
        const double peerMedian = medianOf(peerCosts, part);
        state.counters["ours_" + name + "_ms"] = ourMedian * 1e3;
        state.counters["peer_" + name + "_ms"] = peerMedian * 1e3;
        state.counters[name + "_ratio"] = ourMedian / peerMedian;
    };
    report("wall", &Cost::wall);
    report("cpu", &Cost::processor);
}

template <class Ours, class Peer>
void measureSideBySide(benchmark::State& state, const Ours& ours, const Peer& peer) {
    measureSideBySide(state, ours, peer, [] {});
}

}  // namespace cairnfield

// Comparator networks built at compile time: Batcher's odd-even merge of two
// sorted runs of any lengths, and the sorting network made of such merges.
//
// A network works on numbered slots. Each comparator leaves the smaller of
// its two slots' values in its first slot and the larger in its second, so a
// network of byte-wise minima and maxima ranks every byte lane of a vector on
// its own. After the network, rank[k] names the slot that holds the k-th
// smallest value. Applied to local arrays and fully unrolled, the tables fold
// away into straight-line code, and comparators whose results are never read
// are dropped by the compiler.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_SORTING_NETWORKS_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_SORTING_NETWORKS_H

#include <emmintrin.h>

#include <cstdint>

namespace PRIM_BUILD {

constexpr int kMaxNetworkSlots = 32;
constexpr int kMaxComparators = 128;

// An ordered list of slots: a run, lowest value first.
struct SlotList {
    int count = 0;
    int slot[kMaxNetworkSlots] = {};

    constexpr void Push(int s) { slot[count++] = s; }

    // Every second slot, from the first (from == 0) or the second (from == 1).
    constexpr SlotList Alternate(int from) const {
        SlotList picked;
        for (int i = from; i < count; i += 2) picked.Push(slot[i]);
        return picked;
    }
};

struct ComparatorNetwork {
    int count = 0;
    int low[kMaxComparators] = {};
    int high[kMaxComparators] = {};
    SlotList rank;

    constexpr void Add(int lowSlot, int highSlot) {
        low[count] = lowSlot;
        high[count] = highSlot;
        ++count;
    }
};

// Batcher's merge, for runs of any lengths: merge the even-numbered and the
// odd-numbered elements of both runs separately, then one column of
// comparators between the odd merge and the even merge shifted by one
// finishes the order.
constexpr SlotList OddEvenMerge(ComparatorNetwork& network, const SlotList& a, const SlotList& b) {
    if (a.count == 0) return b;
    if (b.count == 0) return a;
    if (a.count == 1 && b.count == 1) {
        network.Add(a.slot[0], b.slot[0]);
        SlotList both;
        both.Push(a.slot[0]);
        both.Push(b.slot[0]);
        return both;
    }
    const SlotList evens = OddEvenMerge(network, a.Alternate(0), b.Alternate(0));
    const SlotList odds = OddEvenMerge(network, a.Alternate(1), b.Alternate(1));
    SlotList merged;
    merged.Push(evens.slot[0]);
    for (int i = 0; i < odds.count; ++i) {
        if (i + 1 < evens.count) {
            network.Add(odds.slot[i], evens.slot[i + 1]);
            merged.Push(odds.slot[i]);
            merged.Push(evens.slot[i + 1]);
        } else {
            merged.Push(odds.slot[i]);
        }
    }
    for (int i = odds.count + 1; i < evens.count; ++i) merged.Push(evens.slot[i]);
    return merged;
}

constexpr SlotList Consecutive(int first, int count) {
    SlotList run;
    for (int i = 0; i < count; ++i) run.Push(first + i);
    return run;
}

// Merges the sorted runs in slots 0..a-1 and a..a+b-1.
constexpr ComparatorNetwork MergeNetwork(int a, int b) {
    ComparatorNetwork network;
    network.rank = OddEvenMerge(network, Consecutive(0, a), Consecutive(a, b));
    return network;
}

constexpr SlotList SortInto(ComparatorNetwork& network, int first, int count) {
    if (count <= 1) return Consecutive(first, count);
    const int half = count / 2;
    const SlotList lower = SortInto(network, first, half);
    const SlotList upper = SortInto(network, first + half, count - half);
    return OddEvenMerge(network, lower, upper);
}

// Sorts slots 0..n-1.
constexpr ComparatorNetwork SortNetwork(int n) {
    ComparatorNetwork network;
    network.rank = SortInto(network, 0, n);
    return network;
}

// Runs a network over byte lanes of the vectors in v.
template <int kSlots>
inline __attribute__((always_inline)) void ApplyNetwork(const ComparatorNetwork& network, __m128i (&v)[kSlots]) {
#pragma GCC unroll 128
    for (int i = 0; i < network.count; ++i) {
        const __m128i a = v[network.low[i]], b = v[network.high[i]];
        v[network.low[i]] = _mm_min_epu8(a, b);
        v[network.high[i]] = _mm_max_epu8(a, b);
    }
}

}  // namespace PRIM_BUILD

#endif

// Wall time in microseconds.
#pragma once

#include <afx.h>

inline double Microseconds()
{
    LARGE_INTEGER count;
    LARGE_INTEGER frequency;
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&frequency);
    return 1e6 * static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

template <typename Work>
double TimeOf(Work work)
{
    const double dStart = Microseconds();
    work();
    return Microseconds() - dStart;
}

// Times two works one after the other; which one comes first changes with each pair, so that neither is always the one
// that finds the caches filled.
struct PAIR
{
    double dProgram;
    double dPlain;
};

template <typename Program, typename Plain>
PAIR TimePair(int nPair, Program program, Plain plain)
{
    PAIR pair = {};
    if (nPair % 2 == 0)
        pair.dProgram = TimeOf(program);
    pair.dPlain = TimeOf(plain);
    if (nPair % 2 != 0)
        pair.dProgram = TimeOf(program);
    return pair;
}

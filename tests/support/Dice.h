// Chances that a number decides. The engine's arithmetic is the same everywhere, that of distributions isn't.
#pragma once

#include <random>

#include "tests/support/Machine.h"

class CDice
{
public:
    explicit CDice(unsigned int nSeed) : m_engine(nSeed) {}
    unsigned int Below(unsigned int nEnd) { return static_cast<unsigned int>(m_engine() % nEnd); }
    bool OneIn(unsigned int n) { return Below(n) == 0; }
    std::string OneOf(const TEXTS& texts) { return Bytes(texts[Below(static_cast<unsigned int>(texts.size()))]); }

private:
    std::mt19937 m_engine;
};
